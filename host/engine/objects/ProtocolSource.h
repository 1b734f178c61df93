#pragma once

#include "ecm/interfaces/EngineData.h"
#include "host/engine/objects/ProtocolStep.h"
#include "host/object/HostObject.h"
#include "host/record/Vocabulary.h"

namespace vant::host {

// The chain of objects that leads from a control module to the kind of protocol that it speaks. The engine's
// description may have one of its steps fail.

class ProtocolSourceD final : public HostDispatch<IProtocolSourceD> {
public:
    ProtocolSourceD(CallGate& gate, const EngineDescription& engine)
        : HostDispatch(gate, service::ProtocolSourceD), m_engine(engine) {}

    HRESULT STDMETHODCALLTYPE Reserved7() override { return NotImplemented("Reserved7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return NotImplemented("Reserved8"); }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return NotImplemented("Reserved9"); }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return NotImplemented("Reserved10"); }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return NotImplemented("Reserved11"); }
    HRESULT STDMETHODCALLTYPE Reserved12() override { return NotImplemented("Reserved12"); }
    HRESULT STDMETHODCALLTYPE Reserved13() override { return NotImplemented("Reserved13"); }
    HRESULT STDMETHODCALLTYPE Reserved14() override { return NotImplemented("Reserved14"); }
    HRESULT STDMETHODCALLTYPE Reserved15() override { return NotImplemented("Reserved15"); }
    HRESULT STDMETHODCALLTYPE get_Kind(LONG* kind) override {
        return Perform(operation::get_Kind, [&](Record& record) -> HRESULT {
            if (!kind)
                return E_POINTER;
            if (m_engine.protocolFails == ProtocolStep::GetKind)
                return E_FAIL;
            *kind = m_engine.protocol;
            record.Add(argument::kind, std::int64_t{*kind});
            return S_OK;
        });
    }

private:
    const EngineDescription& m_engine;
};

class ProtocolSourceC final : public HostDispatch<IProtocolSourceC> {
public:
    ProtocolSourceC(CallGate& gate, const EngineDescription& engine)
        : HostDispatch(gate, service::ProtocolSourceC), m_engine(engine), m_d(gate, engine) {}

    HRESULT STDMETHODCALLTYPE Reserved7() override { return NotImplemented("Reserved7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return NotImplemented("Reserved8"); }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return NotImplemented("Reserved9"); }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return NotImplemented("Reserved10"); }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return NotImplemented("Reserved11"); }
    HRESULT STDMETHODCALLTYPE GetD(void*, IProtocolSourceD** d) override {
        return Perform(operation::GetD,
                       [&](Record&) { return HandOutStep(m_engine, ProtocolStep::GetD, &m_d, d); });
    }
    template <class Visit>
    void ForEach(Visit visit) const {
        visit(m_d);
    }

private:
    const EngineDescription& m_engine;
    ProtocolSourceD m_d;
};

class ProtocolSourceB final : public HostDispatch<IProtocolSourceB> {
public:
    ProtocolSourceB(CallGate& gate, const EngineDescription& engine)
        : HostDispatch(gate, service::ProtocolSourceB), m_engine(engine), m_c(gate, engine) {}

    HRESULT STDMETHODCALLTYPE Reserved7() override { return NotImplemented("Reserved7"); }
    HRESULT STDMETHODCALLTYPE GetC(void*, IProtocolSourceC** c) override {
        return Perform(operation::GetC,
                       [&](Record&) { return HandOutStep(m_engine, ProtocolStep::GetC, &m_c, c); });
    }
    template <class Visit>
    void ForEach(Visit visit) const {
        visit(m_c);
        m_c.ForEach(visit);
    }

private:
    const EngineDescription& m_engine;
    ProtocolSourceC m_c;
};

class ProtocolSourceA final : public HostDispatch<IProtocolSourceA> {
public:
    ProtocolSourceA(CallGate& gate, const EngineDescription& engine)
        : HostDispatch(gate, service::ProtocolSourceA), m_engine(engine), m_b(gate, engine) {}

    HRESULT STDMETHODCALLTYPE Reserved7() override { return NotImplemented("Reserved7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return NotImplemented("Reserved8"); }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return NotImplemented("Reserved9"); }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return NotImplemented("Reserved10"); }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return NotImplemented("Reserved11"); }
    HRESULT STDMETHODCALLTYPE Reserved12() override { return NotImplemented("Reserved12"); }
    HRESULT STDMETHODCALLTYPE Reserved13() override { return NotImplemented("Reserved13"); }
    HRESULT STDMETHODCALLTYPE GetB(IProtocolSourceB** b) override {
        return Perform(operation::GetB,
                       [&](Record&) { return HandOutStep(m_engine, ProtocolStep::GetB, &m_b, b); });
    }
    template <class Visit>
    void ForEach(Visit visit) const {
        visit(m_b);
        m_b.ForEach(visit);
    }

private:
    const EngineDescription& m_engine;
    ProtocolSourceB m_b;
};

class ProtocolSource final : public HostDispatch<IProtocolSource> {
public:
    /// The description must outlive the chain.
    ProtocolSource(CallGate& gate, const EngineDescription& engine, LONG ecmId)
        : HostDispatch(gate, service::ProtocolSource), m_engine(engine), m_ecmId(ecmId), m_a(gate, engine) {}

    HRESULT STDMETHODCALLTYPE Reserved7() override { return NotImplemented("Reserved7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return NotImplemented("Reserved8"); }
    /// HRESULT_FROM_WIN32(ERROR_NOT_FOUND) for another control module.
    HRESULT STDMETHODCALLTYPE GetA(LONG ecmId, IProtocolSourceA** a) override {
        return Perform(operation::GetA, [&](Record& record) {
            record.Add(argument::ecmId, std::int64_t{ecmId});
            return HandOutStep(m_engine, ProtocolStep::GetA, ecmId == m_ecmId ? &m_a : nullptr, a);
        });
    }
    /// Calls `visit` with every object of the chain.
    template <class Visit>
    void ForEach(Visit visit) const {
        visit(*this);
        visit(m_a);
        m_a.ForEach(visit);
    }

private:
    const EngineDescription& m_engine;
    const LONG m_ecmId;
    ProtocolSourceA m_a;
};

} // namespace vant::host
