/* A client in plain C, as far from the module's own sources as can be: creates one object of every ProgID on
   the command line and asks it for the command interface. Exit code 0 only if every one of them has it. */

#include <objbase.h>
#include <stdio.h>

static const IID IID_Command = {0x9D46497B, 0x8FA4, 0x44AD, {0x85, 0xBA, 0x5A, 0x0C, 0x99, 0x54, 0xE9, 0x10}};

static HRESULT create(const wchar_t* progId) {
    CLSID classId;
    IUnknown* object = NULL;
    IUnknown* command = NULL;
    HRESULT code = CLSIDFromProgID(progId, &classId);
    if (FAILED(code))
        return code;
    code = CoCreateInstance(&classId, NULL, CLSCTX_INPROC_SERVER, &IID_IUnknown, (void**)&object);
    if (FAILED(code))
        return code;
    code = object->lpVtbl->QueryInterface(object, &IID_Command, (void**)&command);
    if (SUCCEEDED(code))
        command->lpVtbl->Release(command);
    object->lpVtbl->Release(object);
    return code;
}

int wmain(int count, wchar_t** arguments) {
    int failures = 0;
    int i;
    HRESULT code = CoInitializeEx(NULL, COINIT_MULTITHREADED);
    if (FAILED(code) || count < 2)
        return 2;
    for (i = 1; i < count; ++i) {
        code = create(arguments[i]);
        printf("%ls: 0x%08lX\n", arguments[i], (unsigned long)code);
        if (FAILED(code))
            ++failures;
    }
    CoUninitialize();
    return failures == 0 ? 0 : 1;
}
