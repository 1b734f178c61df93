#include "framework/ResultFromCaughtException.h"

#include "ecm/ResultPolicy.h"
#include "platform/ComException.h"

#include <new>

namespace vant {

HRESULT ResultFromCaughtException() noexcept {
    try {
        throw;
    } catch (const CComErrorHandlerException& failure) {
        return failure.Code();
    } catch (const CComException& failure) {
        return failure.Code();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_FAIL;
    }
}

} // namespace vant
