#include "tests/support/EngineHost.h"

#include "tests/support/HostObject.h"

#include <deque>
#include <new>
#include <utility>

namespace vant::test {

namespace {

/// A host object that notes when its last reference goes.
template <class Interface>
class EngineObject : public DualHostObject<Interface> {
public:
    EngineObject(TestHost& host, std::vector<std::string>& released, std::string name)
        : DualHostObject<Interface>(host), m_released(released), m_name(std::move(name)) {}

    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = DualHostObject<Interface>::Release();
        if (left == 0)
            Note();
        return left;
    }

protected:
    ~EngineObject() = default;

    /// Hands out the interface `Other` of `object`; the call is noted with the name of the interface.
    template <class Other>
    HRESULT Offer(const char* name, Other& object, void** out) {
        return this->HandOut(this->Enter("QueryInterface", name), object, reinterpret_cast<Other**>(out));
    }

private:
    void Note() {
        try {
            const std::lock_guard lock(this->m_host.Mutex());
            m_released.push_back(m_name);
        } catch (const std::bad_alloc&) {
            // A Release cannot fail, so the note is lost.
        }
    }

    std::vector<std::string>& m_released;
    std::string m_name;
};

/// An object of EngineServices.
template <class Interface>
class ServiceObject : public EngineObject<Interface> {
public:
    ServiceObject(TestHost& host, EngineServices& engine, const char* name)
        : EngineObject<Interface>(host, engine.released, name), m_engine(engine) {}

protected:
    ~ServiceObject() = default;

    template <class Other>
    HRESULT Give(const char* operation, const std::string& arguments, Other& object, Other** out) {
        const HRESULT code = this->Enter(operation, arguments);
        if (SUCCEEDED(code) && m_engine.givesNothing.contains(operation)) {
            *out = nullptr;
            return code;
        }
        return this->HandOut(code, object, out);
    }

    EngineServices& m_engine;
};

class SourceD final : public ServiceObject<IProtocolSourceD> {
public:
    using ServiceObject::ServiceObject;
    HRESULT STDMETHODCALLTYPE Reserved7() override { return Unexpected("IProtocolSourceD 7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return Unexpected("IProtocolSourceD 8"); }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return Unexpected("IProtocolSourceD 9"); }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return Unexpected("IProtocolSourceD 10"); }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return Unexpected("IProtocolSourceD 11"); }
    HRESULT STDMETHODCALLTYPE Reserved12() override { return Unexpected("IProtocolSourceD 12"); }
    HRESULT STDMETHODCALLTYPE Reserved13() override { return Unexpected("IProtocolSourceD 13"); }
    HRESULT STDMETHODCALLTYPE Reserved14() override { return Unexpected("IProtocolSourceD 14"); }
    HRESULT STDMETHODCALLTYPE Reserved15() override { return Unexpected("IProtocolSourceD 15"); }
    HRESULT STDMETHODCALLTYPE get_Kind(LONG* kind) override {
        *kind = m_engine.protocolKind;
        return Enter("get_Kind", "");
    }
};

class SourceC final : public ServiceObject<IProtocolSourceC> {
public:
    SourceC(TestHost& host, EngineServices& engine)
        : ServiceObject(host, engine, "c"), m_d(host, engine, "d") {}
    HRESULT STDMETHODCALLTYPE Reserved7() override { return Unexpected("IProtocolSourceC 7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return Unexpected("IProtocolSourceC 8"); }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return Unexpected("IProtocolSourceC 9"); }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return Unexpected("IProtocolSourceC 10"); }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return Unexpected("IProtocolSourceC 11"); }
    HRESULT STDMETHODCALLTYPE GetD(void* null, IProtocolSourceD** d) override {
        EXPECT_EQ(nullptr, null);
        return Give<IProtocolSourceD>("GetD", "", m_d, d);
    }

private:
    SourceD m_d;
};

class SourceB final : public ServiceObject<IProtocolSourceB> {
public:
    SourceB(TestHost& host, EngineServices& engine) : ServiceObject(host, engine, "b"), m_c(host, engine) {}
    HRESULT STDMETHODCALLTYPE Reserved7() override { return Unexpected("IProtocolSourceB 7"); }
    HRESULT STDMETHODCALLTYPE GetC(void* null, IProtocolSourceC** c) override {
        EXPECT_EQ(nullptr, null);
        return Give<IProtocolSourceC>("GetC", "", m_c, c);
    }

private:
    SourceC m_c;
};

class SourceA final : public ServiceObject<IProtocolSourceA> {
public:
    SourceA(TestHost& host, EngineServices& engine) : ServiceObject(host, engine, "a"), m_b(host, engine) {}
    HRESULT STDMETHODCALLTYPE Reserved7() override { return Unexpected("IProtocolSourceA 7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return Unexpected("IProtocolSourceA 8"); }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return Unexpected("IProtocolSourceA 9"); }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return Unexpected("IProtocolSourceA 10"); }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return Unexpected("IProtocolSourceA 11"); }
    HRESULT STDMETHODCALLTYPE Reserved12() override { return Unexpected("IProtocolSourceA 12"); }
    HRESULT STDMETHODCALLTYPE Reserved13() override { return Unexpected("IProtocolSourceA 13"); }
    HRESULT STDMETHODCALLTYPE GetB(IProtocolSourceB** b) override {
        return Give<IProtocolSourceB>("GetB", "", m_b, b);
    }

private:
    SourceB m_b;
};

class Source final : public ServiceObject<IProtocolSource> {
public:
    Source(TestHost& host, EngineServices& engine)
        : ServiceObject(host, engine, "source"), m_a(host, engine) {}
    HRESULT STDMETHODCALLTYPE Reserved7() override { return Unexpected("IProtocolSource 7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return Unexpected("IProtocolSource 8"); }
    HRESULT STDMETHODCALLTYPE GetA(LONG ecmId, IProtocolSourceA** a) override {
        return Give<IProtocolSourceA>("GetA", std::to_string(ecmId), m_a, a);
    }

private:
    SourceA m_a;
};

class SessionItem final : public ServiceObject<IECMSessionItem> {
public:
    using ServiceObject::ServiceObject;
    HRESULT STDMETHODCALLTYPE Reserved7() override { return Unexpected("IECMSessionItem 7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return Unexpected("IECMSessionItem 8"); }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return Unexpected("IECMSessionItem 9"); }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return Unexpected("IECMSessionItem 10"); }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return Unexpected("IECMSessionItem 11"); }
    HRESULT STDMETHODCALLTYPE get_Value(VARIANT* value) override {
        return Perform(Enter("get_ItemValue", ""), [&] {
            *value = CComVariant(m_engine.sessionValues[read]).Detach();
            return S_OK;
        });
    }

    LONG read = 0;
};

class Session final : public ServiceObject<IECMSession> {
public:
    Session(TestHost& host, EngineServices& engine)
        : ServiceObject(host, engine, "session"), m_item(host, engine, "item") {}
    HRESULT STDMETHODCALLTYPE Register(LONG* handle) override {
        *handle = m_engine.handle;
        return Enter("Register", "");
    }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return Unexpected("IECMSession 8"); }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return Unexpected("IECMSession 9"); }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return Unexpected("IECMSession 10"); }
    HRESULT STDMETHODCALLTYPE ReadParameter(LONG id, LONG kind, IECMSessionItem** item) override {
        m_item.read = id;
        return Give<IECMSessionItem>("ReadParameter", std::to_string(id) + ", " + std::to_string(kind),
                                     m_item, item);
    }

private:
    SessionItem m_item;
};

class OpenedEcm final : public ServiceObject<IDispatch> {
public:
    OpenedEcm(TestHost& host, EngineServices& engine)
        : ServiceObject(host, engine, "opened ECM"), m_session(host, engine) {}
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        return iid == IID_IECMSession ? Offer<IECMSession>("IECMSession", m_session, out)
                                      : ServiceObject::QueryInterface(iid, out);
    }

private:
    Session m_session;
};

class Directory final : public ServiceObject<IECMDirectory> {
public:
    Directory(TestHost& host, EngineServices& engine)
        : ServiceObject(host, engine, "directory"), m_ecm(host, engine) {}
    HRESULT STDMETHODCALLTYPE Reserved7() override { return Unexpected("IECMDirectory 7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return Unexpected("IECMDirectory 8"); }
    HRESULT STDMETHODCALLTYPE OpenECM(LONG ecmId, IUnknown** ecm) override {
        return Give<IUnknown>("OpenECM", std::to_string(ecmId), m_ecm, ecm);
    }
    HRESULT STDMETHODCALLTYPE CloseECM(LONG handle) override {
        return Enter("CloseECM", std::to_string(handle));
    }

private:
    OpenedEcm m_ecm;
};

class SessionManager final : public ServiceObject<IECMSessionManager> {
public:
    SessionManager(TestHost& host, EngineServices& engine)
        : ServiceObject(host, engine, "session manager"), m_directory(host, engine), m_source(host, engine) {}
    HRESULT STDMETHODCALLTYPE Reserved7() override { return Unexpected("IECMSessionManager 7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return Unexpected("IECMSessionManager 8"); }
    HRESULT STDMETHODCALLTYPE GetDirectory(IECMDirectory** directory) override {
        return Give<IECMDirectory>("GetDirectory", "", m_directory, directory);
    }
    HRESULT STDMETHODCALLTYPE GetProtocolSource(IProtocolSource** source) override {
        return Give<IProtocolSource>("GetProtocolSource", "", m_source, source);
    }

private:
    Directory m_directory;
    Source m_source;
};

/// Ends with its last reference.
class Unit final : public DualHostObject<IUnit> {
public:
    Unit(TestHost& host, std::wstring text) : DualHostObject(host), m_text(std::move(text)) {}
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = DualHostObject::Release();
        if (left == 0)
            delete this;
        return left;
    }
    HRESULT STDMETHODCALLTYPE Reserved7() override { return Unexpected("IUnit 7"); }
    HRESULT STDMETHODCALLTYPE get_Text(BSTR* text) override {
        return ReturnText(Enter("get_UnitText", ""), m_text, text);
    }

private:
    const std::wstring m_text;
};

class UnitsTable final : public ServiceObject<IUnitsTable> {
public:
    using ServiceObject::ServiceObject;
    HRESULT STDMETHODCALLTYPE GetUnit(BSTR unitsKey, IUnit** unit) override {
        *unit = nullptr;
        return Perform(Enter("GetUnit", Show(unitsKey)), [&] {
            const auto found = m_engine.units.find(TextOf(unitsKey));
            if (found == m_engine.units.end())
                return E_INVALIDARG;
            return m_engine.givesNothing.contains("GetUnit")
                       ? S_OK
                       : HandOut<IUnit>(S_OK, *new Unit(m_host, found->second), unit);
        });
    }
};

/// Lent like the context, so it need not be held to be asked for its interfaces. It is one object with the
/// host's thread service.
class Services final : public ServiceObject<IECMServicesOld> {
public:
    Services(TestHost& host, EngineServices& engine)
        : ServiceObject(host, engine, "ECM services"), m_sessionManager(host, engine),
          m_units(host, engine, "units table") {}
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        if (iid == IID_IECMServicesOld)
            return HandOut<IECMServicesOld>(m_host.Enter("QueryInterface", "IECMServicesOld"), *this,
                                            reinterpret_cast<IECMServicesOld**>(out));
        if (iid == IID_IECMSessionManager)
            return Offer<IECMSessionManager>("IECMSessionManager", m_sessionManager, out);
        return m_host.Threads().Object()->QueryInterface(iid, out);
    }
    HRESULT STDMETHODCALLTYPE Reserved7() override { return Unexpected("IECMServicesOld 7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return Unexpected("IECMServicesOld 8"); }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return Unexpected("IECMServicesOld 9"); }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return Unexpected("IECMServicesOld 10"); }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return Unexpected("IECMServicesOld 11"); }
    HRESULT STDMETHODCALLTYPE GetUnits(IUnknown** unitsTable) override {
        return Give<IUnknown>("GetUnits", "", m_units, unitsTable);
    }

private:
    SessionManager m_sessionManager;
    UnitsTable m_units;
};

class Field final : public EngineObject<IFaultField> {
public:
    Field(TestHost& host, std::vector<std::string>& released, std::string name, FaultField field)
        : EngineObject(host, released, std::move(name)), m_field(std::move(field)) {}
    HRESULT STDMETHODCALLTYPE get_Name(BSTR* name) override {
        return ReturnText(Enter("get_FieldName", ""), m_field.name, name);
    }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return Unexpected("IFaultField 8"); }
    HRESULT STDMETHODCALLTYPE get_Value(BSTR* value) override {
        return ReturnText(Enter("get_FieldValue", ""), m_field.value, value);
    }

private:
    FaultField m_field;
};

/// The item that `index` names, counted from 1; null if there is none.
template <class Item>
Item* At(std::deque<Item>& items, const VARIANT& index) {
    return index.vt == VT_I4 && index.lVal >= 1 && static_cast<std::size_t>(index.lVal) <= items.size()
               ? &items[static_cast<std::size_t>(index.lVal) - 1]
               : nullptr;
}

class Record final : public EngineObject<IFaultRecord> {
public:
    Record(TestHost& host, FaultArray& array, const std::string& name, const FaultRecord& record)
        : EngineObject(host, array.released, name), m_array(array) {
        for (const FaultField& field : record)
            m_fields.emplace_back(host, array.released,
                                  name + " field " + std::to_string(m_fields.size() + 1), field);
    }
    HRESULT STDMETHODCALLTYPE get_Item(VARIANT index, IFaultField** field) override {
        *field = nullptr;
        const HRESULT code = Enter("get_Field", Show(index));
        if (SUCCEEDED(code) && m_array.givesNothing.contains("get_Field"))
            return code;
        Field* const found = At(m_fields, index);
        return found ? HandOut<IFaultField>(code, *found, field) : E_INVALIDARG;
    }
    HRESULT STDMETHODCALLTYPE get_Count(LONG* count) override {
        *count = static_cast<LONG>(m_fields.size());
        return Enter("get_FieldCount", "");
    }

private:
    FaultArray& m_array;
    std::deque<Field> m_fields;
};

class RecordList final : public EngineObject<IFaultRecordList> {
public:
    RecordList(TestHost& host, FaultArray& array, const std::vector<FaultRecord>& records)
        : EngineObject(host, array.released, "records"), m_array(array) {
        for (const FaultRecord& record : records)
            m_records.emplace_back(host, array, "record " + std::to_string(m_records.size() + 1), record);
    }
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        return iid == IID_IFaultRecordList ? Offer<IFaultRecordList>("IFaultRecordList", *this, out)
                                           : EngineObject::QueryInterface(iid, out);
    }
    HRESULT STDMETHODCALLTYPE get_Item(VARIANT index, IFaultRecord** record) override {
        *record = nullptr;
        const HRESULT code = Enter("get_Record", Show(index));
        if (SUCCEEDED(code) && m_array.givesNothing.contains("get_Record"))
            return code;
        Record* const found = At(m_records, index);
        return found ? HandOut<IFaultRecord>(code, *found, record) : E_INVALIDARG;
    }
    HRESULT STDMETHODCALLTYPE get_Count(LONG* count) override {
        *count = m_array.count;
        return Enter("get_RecordCount", "");
    }

private:
    FaultArray& m_array;
    std::deque<Record> m_records;
};

class Array final : public EngineObject<IFaultArray> {
public:
    Array(TestHost& host, FaultArray& array, const std::vector<FaultRecord>& records)
        : EngineObject(host, array.released, "array"), m_array(array), m_records(host, array, records) {}
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        return iid == IID_IFaultArray ? Offer<IFaultArray>("IFaultArray", *this, out)
                                      : EngineObject::QueryInterface(iid, out);
    }
    HRESULT STDMETHODCALLTYPE Reserved7() override { return Unexpected("IFaultArray 7"); }
    HRESULT STDMETHODCALLTYPE get_Records(IUnknown** records) override {
        *records = nullptr;
        const HRESULT code = Enter("get_Records", "");
        return m_array.givesNothing.contains("get_Records") ? code
                                                            : HandOut<IUnknown>(code, m_records, records);
    }

private:
    FaultArray& m_array;
    RecordList m_records;
};

} // namespace

struct EngineServices::Objects {
    Objects(TestHost& host, EngineServices& engine) : services(host, engine) {}

    Services services;
};

EngineServices::EngineServices(TestHost& host)
    : m_host(host), m_objects(std::make_unique<Objects>(host, *this)) {
    m_host.engineServices = Object();
}

EngineServices::~EngineServices() {
    m_host.engineServices = nullptr;
}

IUnknown* EngineServices::Object() noexcept {
    return &m_objects->services;
}

struct FaultArray::Objects {
    Objects(TestHost& host, FaultArray& faultArray, const std::vector<FaultRecord>& records)
        : array(host, faultArray, records) {}

    Array array;
};

FaultArray::FaultArray(TestHost& host, const std::wstring& id, const std::vector<FaultRecord>& records)
    : count(static_cast<LONG>(records.size())), m_host(host), m_id(id),
      m_objects(std::make_unique<Objects>(host, *this, records)) {
    m_host.arrays.insert_or_assign(id, &m_objects->array);
}

FaultArray::~FaultArray() {
    m_host.arrays.erase(m_id);
}

} // namespace vant::test
