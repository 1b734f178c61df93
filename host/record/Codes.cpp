#include "host/record/Codes.h"

#include "host/record/Json.h"

#include <algorithm>
#include <fmt/format.h>

namespace vant::host {

std::span<const CodeMeaning> CodeMeanings() noexcept {
    static constexpr CodeMeaning meanings[] = {
        {S_OK, "S_OK", "done"},
        {S_FALSE, "S_FALSE", "has ended"},
        {E_FAIL, "E_FAIL", "unspecified failure"},
        {E_ABORT, "E_ABORT", "refused, because the step or the procedure ends"},
        {E_ACCESSDENIED, "E_ACCESSDENIED", "read-only"},
        {E_BOUNDS, "E_BOUNDS", "beyond the limits of the parameter"},
        {E_INVALIDARG, "E_INVALIDARG", "invalid argument"},
        {E_NOINTERFACE, "E_NOINTERFACE", "not supported by the object"},
        {E_NOTIMPL, "E_NOTIMPL", "not implemented"},
        {E_OUTOFMEMORY, "E_OUTOFMEMORY", "out of memory"},
        {E_POINTER, "E_POINTER", "null pointer"},
        {E_UNEXPECTED, "E_UNEXPECTED", "unexpected in this state"},
        {DISP_E_BADINDEX, "DISP_E_BADINDEX", "no such index"},
        {DISP_E_OVERFLOW, "DISP_E_OVERFLOW", "out of the range of the type"},
        {DISP_E_TYPEMISMATCH, "DISP_E_TYPEMISMATCH", "cannot be converted to the type"},
        {CLASS_E_CLASSNOTAVAILABLE, "CLASS_E_CLASSNOTAVAILABLE", "no such class"},
        {REGDB_E_CLASSNOTREG, "REGDB_E_CLASSNOTREG", "not registered"},
        {HRESULT_FROM_WIN32(ERROR_NOT_FOUND), "HRESULT_FROM_WIN32(ERROR_NOT_FOUND)", "not found"},
        {HRESULT_FROM_WIN32(ERROR_READ_FAULT), "HRESULT_FROM_WIN32(ERROR_READ_FAULT)", "cannot be read"},
        {HRESULT_FROM_WIN32(ERROR_MAX_THRDS_REACHED), "HRESULT_FROM_WIN32(ERROR_MAX_THRDS_REACHED)",
         "too many commands run on"},
        {HRESULT_FROM_WIN32(ERROR_STACK_OVERFLOW), "HRESULT_FROM_WIN32(ERROR_STACK_OVERFLOW)",
         "commands run one another too deeply"},
        {HRESULT_FROM_WIN32(ERROR_POSSIBLE_DEADLOCK), "HRESULT_FROM_WIN32(ERROR_POSSIBLE_DEADLOCK)",
         "would wait for itself"},
    };
    return meanings;
}

const char* MeaningOf(HRESULT code) noexcept {
    const auto meanings = CodeMeanings();
    const auto found = std::find_if(meanings.begin(), meanings.end(),
                                    [code](const CodeMeaning& each) { return each.code == code; });
    return found == meanings.end() ? nullptr : found->meaning;
}

std::string DescribeCode(HRESULT code) {
    const char* const meaning = MeaningOf(code);
    return meaning ? fmt::format("{}, {}", meaning, ToText(code)) : ToText(code);
}

} // namespace vant::host
