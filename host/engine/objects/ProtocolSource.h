#pragma once

#include "ecm/interfaces/EngineData.h"
#include "host/engine/objects/ProtocolStep.h"
#include "host/object/HostObject.h"

namespace vant::host {

// Four steps lead from a control module to the kind of protocol that it speaks. The engine's description may
// let one of them fail.

class ProtocolSourceD final : public HostDispatch<IProtocolSourceD> {
public:
    ProtocolSourceD(Journal& journal, const EngineDescription& engine)
        : HostDispatch(journal, "ProtocolSourceD"), m_engine(engine) {}

    HRESULT STDMETHODCALLTYPE Reserved7() override { return Refuse("Reserved7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return Refuse("Reserved8"); }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return Refuse("Reserved9"); }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return Refuse("Reserved10"); }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return Refuse("Reserved11"); }
    HRESULT STDMETHODCALLTYPE Reserved12() override { return Refuse("Reserved12"); }
    HRESULT STDMETHODCALLTYPE Reserved13() override { return Refuse("Reserved13"); }
    HRESULT STDMETHODCALLTYPE Reserved14() override { return Refuse("Reserved14"); }
    HRESULT STDMETHODCALLTYPE Reserved15() override { return Refuse("Reserved15"); }
    HRESULT STDMETHODCALLTYPE get_Kind(LONG* kind) override {
        return Answer("get_Kind", [&](Record& record) -> HRESULT {
            if (!kind)
                return E_POINTER;
            if (m_engine.protocolFails == ProtocolStep::GetKind)
                return E_FAIL;
            *kind = m_engine.protocol;
            record.Add("kind", std::int64_t{*kind});
            return S_OK;
        });
    }

private:
    const EngineDescription& m_engine;
};

class ProtocolSourceC final : public HostDispatch<IProtocolSourceC> {
public:
    ProtocolSourceC(Journal& journal, const EngineDescription& engine)
        : HostDispatch(journal, "ProtocolSourceC"), m_engine(engine), m_d(journal, engine) {}

    HRESULT STDMETHODCALLTYPE Reserved7() override { return Refuse("Reserved7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return Refuse("Reserved8"); }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return Refuse("Reserved9"); }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return Refuse("Reserved10"); }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return Refuse("Reserved11"); }
    HRESULT STDMETHODCALLTYPE GetD(void*, IProtocolSourceD** d) override {
        return Answer("GetD", [&](Record&) { return HandOutStep(m_engine, ProtocolStep::GetD, &m_d, d); });
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
    ProtocolSourceB(Journal& journal, const EngineDescription& engine)
        : HostDispatch(journal, "ProtocolSourceB"), m_engine(engine), m_c(journal, engine) {}

    HRESULT STDMETHODCALLTYPE Reserved7() override { return Refuse("Reserved7"); }
    HRESULT STDMETHODCALLTYPE GetC(void*, IProtocolSourceC** c) override {
        return Answer("GetC", [&](Record&) { return HandOutStep(m_engine, ProtocolStep::GetC, &m_c, c); });
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
    ProtocolSourceA(Journal& journal, const EngineDescription& engine)
        : HostDispatch(journal, "ProtocolSourceA"), m_engine(engine), m_b(journal, engine) {}

    HRESULT STDMETHODCALLTYPE Reserved7() override { return Refuse("Reserved7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return Refuse("Reserved8"); }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return Refuse("Reserved9"); }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return Refuse("Reserved10"); }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return Refuse("Reserved11"); }
    HRESULT STDMETHODCALLTYPE Reserved12() override { return Refuse("Reserved12"); }
    HRESULT STDMETHODCALLTYPE Reserved13() override { return Refuse("Reserved13"); }
    HRESULT STDMETHODCALLTYPE GetB(IProtocolSourceB** b) override {
        return Answer("GetB", [&](Record&) { return HandOutStep(m_engine, ProtocolStep::GetB, &m_b, b); });
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
    ProtocolSource(Journal& journal, const EngineDescription& engine, LONG ecmId)
        : HostDispatch(journal, "ProtocolSource"), m_engine(engine), m_ecmId(ecmId), m_a(journal, engine) {}

    HRESULT STDMETHODCALLTYPE Reserved7() override { return Refuse("Reserved7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return Refuse("Reserved8"); }
    /// HRESULT_FROM_WIN32(ERROR_NOT_FOUND) for another control module.
    HRESULT STDMETHODCALLTYPE GetA(LONG ecmId, IProtocolSourceA** a) override {
        return Answer("GetA", [&](Record& record) {
            record.Add("ecmId", std::int64_t{ecmId});
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
