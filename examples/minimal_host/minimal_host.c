/* A complete host for the command classes in one file of plain C: it loads the module, creates commands,
   offers them its own services and runs a Calculator and, on a thread of its own thread service, a Timer.

       minimal_host MODULE

   It uses the binary contract alone (docs/hosting.md) and includes no header of the project. An interface is
   a pointer to a table of functions, counted from 0; the host fills the slots that commands call. */

#include <stdatomic.h>
#include <stdbool.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <wchar.h>

/* ---- What differs between the systems: the types of strings and values, loading, threads, a lock. */

typedef void (*Slot)(void);

#ifdef _WIN32
#include <windows.h>

typedef HMODULE Library;
typedef HANDLE Thread;
typedef SRWLOCK Lock;
#define LOCK_INIT SRWLOCK_INIT
#define THREAD_ENTRY DWORD WINAPI

static Library load(const char* file) {
    return LoadLibraryA(file);
}
static void unload(Library library) {
    FreeLibrary(library);
}
static Slot find(Library library, const char* name) {
    return (Slot)GetProcAddress(library, name);
}
static bool find_platform(Library module) {
    (void)module; /* the system itself */
    return true;
}
static bool start(Thread* thread, DWORD(WINAPI* entry)(void*), void* argument) {
    *thread = CreateThread(NULL, 0, entry, argument, 0, NULL);
    return *thread != NULL;
}
static void join(Thread thread) {
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
}
static void acquire(Lock* lock) {
    AcquireSRWLockExclusive(lock);
}
static void release_lock(Lock* lock) {
    ReleaseSRWLockExclusive(lock);
}

#else
#include <dlfcn.h>
#include <pthread.h>

#define STDMETHODCALLTYPE
typedef int32_t HRESULT, LONG;
typedef uint32_t ULONG;
typedef wchar_t* BSTR; /* the length in bytes precedes the text */
typedef struct {
    uint32_t Data1;
    uint16_t Data2, Data3;
    uint8_t Data4[8];
} GUID;
typedef struct {
    uint16_t vt, reserved[3];
    union {
        LONG lVal;
        double dblVal;
        BSTR bstrVal;
        void* pointers[2];
    };
} VARIANT;
enum { VT_EMPTY = 0, VT_I4 = 3, VT_BSTR = 8 };
#define S_OK ((HRESULT)0)
#define E_NOTIMPL ((HRESULT)0x80004001)
#define E_NOINTERFACE ((HRESULT)0x80004002)
#define E_FAIL ((HRESULT)0x80004005)
#define E_OUTOFMEMORY ((HRESULT)0x8007000E)
#define FAILED(code) ((code) < 0)
#define SUCCEEDED(code) ((code) >= 0)

typedef void* Library;
typedef pthread_t Thread;
typedef pthread_mutex_t Lock;
#define LOCK_INIT PTHREAD_MUTEX_INITIALIZER
#define THREAD_ENTRY void*

static Library load(const char* file) {
    return dlopen(file, RTLD_NOW | RTLD_LOCAL);
}
static void unload(Library library) {
    dlclose(library);
}
static Slot find(Library library, const char* name) {
    Slot function;
    *(void**)&function = dlsym(library, name);
    return function;
}
static bool start(Thread* thread, void* (*entry)(void*), void* argument) {
    return pthread_create(thread, NULL, entry, argument) == 0;
}
static void join(Thread thread) {
    pthread_join(thread, NULL);
}
static void acquire(Lock* lock) {
    pthread_mutex_lock(lock);
}
static void release_lock(Lock* lock) {
    pthread_mutex_unlock(lock);
}

/* Strings must come from the library that the module takes them from: the platform library loaded with it. */
static BSTR (*SysAllocString)(const wchar_t* text);
static void (*SysFreeString)(BSTR text);
static HRESULT (*VariantClear)(VARIANT* value);
static HRESULT (*VariantCopy)(VARIANT* destination, const VARIANT* source);

static bool find_platform(Library module) {
    SysAllocString = (BSTR(*)(const wchar_t*))find(module, "SysAllocString");
    SysFreeString = (void (*)(BSTR))find(module, "SysFreeString");
    VariantClear = (HRESULT(*)(VARIANT*))find(module, "VariantClear");
    VariantCopy = (HRESULT(*)(VARIANT*, const VARIANT*))find(module, "VariantCopy");
    return SysAllocString && SysFreeString && VariantClear && VariantCopy;
}
#endif

/* ---- What the host calls. */

typedef struct Object Object; /* any interface: a pointer to its table */
typedef struct Factory Factory;
typedef struct Command Command;
typedef struct PersistentCommand PersistentCommand;
typedef struct Callback Callback;

#define UNKNOWN_SLOTS(Type)                                                                                  \
    HRESULT(STDMETHODCALLTYPE* QueryInterface)(Type*, const GUID*, void**);                                  \
    ULONG(STDMETHODCALLTYPE* AddRef)(Type*);                                                                 \
    ULONG(STDMETHODCALLTYPE* Release)(Type*)

struct Factory { /* IClassFactory */
    const struct {
        UNKNOWN_SLOTS(Factory);
        HRESULT(STDMETHODCALLTYPE* CreateInstance)(Factory*, Object* outer, const GUID*, void**);
    } * slots;
};
struct Command { /* IVantCommand */
    const struct {
        UNKNOWN_SLOTS(Command);
        HRESULT(STDMETHODCALLTYPE* Initialize)(Command*, Object* context, Object* controller);
        HRESULT(STDMETHODCALLTYPE* Execute)(Command*);
        HRESULT(STDMETHODCALLTYPE* SetProperty)(Command*, BSTR name, BSTR value);
    } * slots;
};
struct PersistentCommand { /* IVantPersistentCommand */
    const struct {
        UNKNOWN_SLOTS(PersistentCommand);
        HRESULT(STDMETHODCALLTYPE* Stop)(PersistentCommand*);
    } * slots;
};
struct Callback { /* IThreadCallback */
    const struct {
        UNKNOWN_SLOTS(Callback);
        Slot dispatch[4];
        HRESULT(STDMETHODCALLTYPE* RunOnThread)(Callback*);
    } * slots;
};

static const GUID unknown_id = {0x00000000, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
static const GUID factory_id = {0x00000001, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
static const GUID command_id = {0x9D46497B, 0x8FA4, 0x44AD, {0x85, 0xBA, 0x5A, 0x0C, 0x99, 0x54, 0xE9, 0x10}};
static const GUID persistent_id = {
    0x320D49F6, 0x7C7F, 0x4107, {0x99, 0x00, 0x6B, 0x70, 0x3C, 0x99, 0xE8, 0xEE}};
static const GUID thread_service_id = {
    0x3920C9CE, 0x1878, 0x49C8, {0xBA, 0x82, 0x41, 0xCA, 0xA3, 0x6E, 0x71, 0x68}};

static bool same(const GUID* a, const GUID* b) {
    return memcmp(a, b, sizeof *a) == 0;
}

/* ---- The procedure: what commands there are. */

typedef struct {
    const wchar_t *name, *value;
} Text;
typedef struct {
    const wchar_t* id;
    GUID class_id;
    Text properties[6];
} CommandRow;

static const CommandRow commands[] = {
    {L"sum",
     {0x1111BFC7, 0x28AF, 0x4B67, {0xB4, 0x26, 0xF2, 0x0A, 0xEB, 0x66, 0xF7, 0x82}}, /* Calculator */
     {{L"operation", L"add"}, {L"sourceA", L"2"}, {L"sourceB", L"3"}, {L"dsResult", L"total"}}},
    {L"countdown",
     {0x2A3BEB3D, 0x5F5A, 0x4765, {0xA7, 0x28, 0x83, 0xE5, 0xDC, 0x66, 0x8B, 0x1F}}, /* Timer */
     {{L"length", L"1"}, {L"dsBase", L"left"}, {L"stopCommandID", L"sum"}}},
    {L"long countdown",
     {0x2A3BEB3D, 0x5F5A, 0x4765, {0xA7, 0x28, 0x83, 0xE5, 0xDC, 0x66, 0x8B, 0x1F}},
     {{L"length", L"3600"}, {L"dsBase", L"left"}, {L"stopCommandID", L"sum"}}},
};

/* ---- The host's objects. They live as long as the program, so their references are only counted. */

struct Object {
    const Slot* slots;
    const GUID* interface_id; /* besides IUnknown; NULL if there is none */
    atomic_long references;
};

static HRESULT STDMETHODCALLTYPE query(Object* self, const GUID* wanted, void** out) {
    const bool known = same(wanted, &unknown_id) || (self->interface_id && same(wanted, self->interface_id));
    *out = known ? self : NULL;
    if (known)
        atomic_fetch_add(&self->references, 1);
    return known ? S_OK : E_NOINTERFACE;
}
static ULONG STDMETHODCALLTYPE add_reference(Object* self) {
    return (ULONG)atomic_fetch_add(&self->references, 1) + 1;
}
static ULONG STDMETHODCALLTYPE release(Object* self) {
    return (ULONG)atomic_fetch_sub(&self->references, 1) - 1;
}
#define UNKNOWN (Slot) query, (Slot)add_reference, (Slot)release

static const wchar_t* text_of(BSTR text) {
    return text ? text : L"";
}

/* Data store. Persistent commands call it from their threads while others call it from the host's. */
enum { MAX_ENTRIES = 16 };
static struct {
    BSTR name;
    VARIANT value;
} entries[MAX_ENTRIES];
static Lock store_lock = LOCK_INIT;

/* The entry of that name, else the first free one, else none. */
static int find_entry(BSTR name) {
    int i = 0;
    while (i < MAX_ENTRIES && entries[i].name && wcscmp(entries[i].name, text_of(name)) != 0)
        ++i;
    return i;
}
static HRESULT STDMETHODCALLTYPE get_value(Object* self, BSTR name, VARIANT* value) {
    HRESULT code = E_FAIL;
    (void)self;
    acquire(&store_lock);
    const int i = find_entry(name);
    if (i < MAX_ENTRIES && entries[i].name)
        code = VariantCopy(value, &entries[i].value);
    release_lock(&store_lock);
    return code;
}
static HRESULT STDMETHODCALLTYPE set_value(Object* self, BSTR name, VARIANT value) {
    HRESULT code = E_OUTOFMEMORY;
    (void)self;
    acquire(&store_lock);
    const int i = find_entry(name);
    if (i < MAX_ENTRIES && !entries[i].name)
        entries[i].name = SysAllocString(text_of(name));
    if (i < MAX_ENTRIES && entries[i].name)
        code = VariantCopy(&entries[i].value, &value); /* the argument stays the caller's */
    release_lock(&store_lock);
    if (value.vt == VT_BSTR)
        printf("  DataStore.SetValue %ls = \"%ls\"\n", text_of(name), text_of(value.bstrVal));
    else if (value.vt == VT_I4)
        printf("  DataStore.SetValue %ls = %ld\n", text_of(name), (long)value.lVal);
    return code;
}
static void clear_store(void) {
    for (int i = 0; i < MAX_ENTRIES; ++i) {
        SysFreeString(entries[i].name);
        VariantClear(&entries[i].value);
    }
}
static const Slot store_slots[] = {UNKNOWN, [9] = (Slot)get_value, [10] = (Slot)set_value};
static Object data_store = {.slots = store_slots};

/* Command runner. Commands run other commands of the procedure by their ids. */
static HRESULT run(const wchar_t* id);
static HRESULT STDMETHODCALLTYPE run_command(Object* self, BSTR id) {
    (void)self;
    return run(text_of(id));
}
static const Slot runner_slots[] = {UNKNOWN, (Slot)run_command, (Slot)run_command};
static Object command_runner = {.slots = runner_slots};

/* Display, instructions, transitions. */
static HRESULT STDMETHODCALLTYPE set_component_property(Object* self, BSTR component, BSTR name, BSTR value) {
    (void)self;
    printf("  SetComponentProperty %ls.%ls = \"%ls\"\n", text_of(component), text_of(name), text_of(value));
    return S_OK;
}
static const Slot component_slots[] = {UNKNOWN, [10] = (Slot)set_component_property};
static Object component_service = {.slots = component_slots};

static HRESULT STDMETHODCALLTYPE show_instruction(Object* self, BSTR text) {
    (void)self;
    printf("  ShowInstruction \"%ls\"\n", text_of(text));
    return S_OK;
}
static const Slot presentation_slots[] = {UNKNOWN, [7] = (Slot)show_instruction};
static Object presentation_service = {.slots = presentation_slots};

static HRESULT STDMETHODCALLTYPE set_transition(Object* self, BSTR transition) {
    (void)self;
    printf("  SetTransition %ls\n", text_of(transition));
    return S_OK;
}
static const Slot procedure_slots[] = {UNKNOWN, [7] = (Slot)set_transition};
static Object procedure_controller = {.slots = procedure_slots};

/* Parameter service. This host has no engine: it knows no connection and no parameter. */
static HRESULT STDMETHODCALLTYPE get_connection(Object* self, void** connection) {
    (void)self;
    *connection = NULL;
    return E_FAIL;
}
static HRESULT STDMETHODCALLTYPE get_parameter(Object* self, BSTR id, LONG kind, void** parameter) {
    (void)self, (void)id, (void)kind;
    *parameter = NULL;
    return E_FAIL;
}
static HRESULT STDMETHODCALLTYPE set_parameter(Object* self, BSTR id, LONG kind, VARIANT value,
                                               void** parameter) {
    (void)self, (void)id, (void)kind, (void)value;
    *parameter = NULL;
    return E_FAIL;
}
static const Slot parameter_slots[] = {
    UNKNOWN, [10] = (Slot)get_connection, [12] = (Slot)get_parameter, [13] = (Slot)set_parameter};
static Object parameter_service = {.slots = parameter_slots};

/* Thread service. Each registration is one thread, which calls the callback once. */
typedef struct { /* what a command says of its callback; the pointers stay the command's */
    Callback* callback;
    uint32_t argument, settings[3];
    BSTR owner_name, thread_name;
} Registration;

enum { MAX_THREADS = 16 };
static Thread threads[MAX_THREADS];
static uint32_t thread_count;

static THREAD_ENTRY run_callback(void* argument) {
    Callback* const callback = argument;
    callback->slots->RunOnThread(callback); /* always returns E_FAIL */
    callback->slots->Release(callback);
    return 0;
}
static HRESULT STDMETHODCALLTYPE register_callback(Object* self, Callback* callback,
                                                   const Registration* registration, uint32_t* cookie) {
    (void)self, (void)registration;
    if (thread_count == MAX_THREADS)
        return E_OUTOFMEMORY;
    callback->slots->AddRef(callback);
    if (!start(&threads[thread_count], run_callback, callback)) {
        callback->slots->Release(callback);
        return E_OUTOFMEMORY;
    }
    *cookie = ++thread_count;
    return S_OK;
}
static HRESULT STDMETHODCALLTYPE unregister_callback(Object* self, uint32_t cookie) {
    (void)self, (void)cookie;
    return E_NOTIMPL; /* registrations last until join_threads */
}
static const Slot thread_slots[] = {UNKNOWN, [8] = (Slot)unregister_callback, [13] = (Slot)register_callback};
static Object thread_service = {.slots = thread_slots, .interface_id = &thread_service_id};

/* Controller. */
static atomic_int stopped_count;

static HRESULT STDMETHODCALLTYPE terminate_command(Object* self, BSTR id) {
    (void)self, (void)id;
    return E_NOTIMPL; /* no command of this procedure ends another one */
}
static HRESULT STDMETHODCALLTYPE command_stopped(Object* self, PersistentCommand* command) {
    (void)self, (void)command; /* its thread may still be at work: nothing is released here */
    atomic_fetch_add(&stopped_count, 1);
    return S_OK;
}
static const Slot controller_slots[] = {UNKNOWN, (Slot)terminate_command, [6] = (Slot)command_stopped};
static Object controller = {.slots = controller_slots};

/* Context: hands out the services. */
static HRESULT give(Object* service, Object** out) {
    add_reference(service);
    *out = service;
    return S_OK;
}
#define SERVICE(name)                                                                                        \
    static HRESULT STDMETHODCALLTYPE get_##name(Object* self, Object** out) {                                \
        (void)self;                                                                                          \
        return give(&name, out);                                                                             \
    }
SERVICE(procedure_controller)
SERVICE(command_runner)
SERVICE(component_service)
SERVICE(presentation_service)
SERVICE(data_store)
SERVICE(thread_service)
SERVICE(parameter_service)
static HRESULT STDMETHODCALLTYPE get_nothing(Object* self, Object** out) {
    (void)self;
    *out = NULL; /* commands hold these two services and never call them */
    return S_OK;
}
static const Slot context_slots[] = {UNKNOWN,
                                     [3] = (Slot)get_procedure_controller,
                                     [5] = (Slot)get_command_runner,
                                     [7] = (Slot)get_component_service,
                                     [9] = (Slot)get_nothing,
                                     [11] = (Slot)get_nothing,
                                     [13] = (Slot)get_presentation_service,
                                     [15] = (Slot)get_data_store,
                                     [17] = (Slot)get_thread_service,
                                     [21] = (Slot)get_parameter_service};
static Object context = {.slots = context_slots};

/* ---- Running commands. */

typedef HRESULT STDMETHODCALLTYPE GetClassObject(const GUID* class_id, const GUID* interface_id, void** out);
typedef HRESULT STDMETHODCALLTYPE CanUnloadNow(void);
static GetClassObject* get_class_object;

static HRESULT set_property(Command* command, const Text* property) {
    BSTR name = SysAllocString(property->name);
    BSTR value = SysAllocString(property->value);
    const HRESULT code = command->slots->SetProperty(command, name, value);
    SysFreeString(name);
    SysFreeString(value);
    return code;
}

/* A new command, initialised and with its properties; NULL if anything failed. */
static Command* create(const wchar_t* id) {
    for (size_t row = 0; row < sizeof commands / sizeof *commands; ++row) {
        if (wcscmp(commands[row].id, id) != 0)
            continue;
        Factory* factory = NULL;
        Command* command = NULL;
        HRESULT code = get_class_object(&commands[row].class_id, &factory_id, (void**)&factory);
        if (SUCCEEDED(code)) {
            code = factory->slots->CreateInstance(factory, NULL, &command_id, (void**)&command);
            factory->slots->Release(factory);
        }
        if (SUCCEEDED(code))
            code = command->slots->Initialize(command, &context, &controller);
        for (const Text* each = commands[row].properties; SUCCEEDED(code) && each->name; ++each)
            code = set_property(command, each);
        if (SUCCEEDED(code))
            return command;
        if (command)
            command->slots->Release(command);
    }
    return NULL;
}

/* Persistent commands go on after their Execute: they are kept until their threads have ended. This host
   starts them on its main thread alone. */
static Command* running[MAX_THREADS];
static int running_count;

static PersistentCommand* as_persistent(Command* command) {
    PersistentCommand* persistent = NULL;
    command->slots->QueryInterface(command, &persistent_id, (void**)&persistent);
    return persistent;
}

static HRESULT run(const wchar_t* id) {
    Command* const command = create(id);
    if (!command)
        return E_FAIL;
    PersistentCommand* const persistent = as_persistent(command);
    if (!persistent || running_count == MAX_THREADS) {
        const HRESULT code = persistent ? E_OUTOFMEMORY : command->slots->Execute(command);
        if (persistent)
            persistent->slots->Release(persistent);
        command->slots->Release(command);
        return code;
    }
    persistent->slots->Release(persistent);
    running[running_count++] = command;
    return command->slots->Execute(command);
}

/* Waits for the threads; only then may the commands go that they work on. */
static void join_threads(void) {
    while (thread_count > 0)
        join(threads[--thread_count]);
    while (running_count > 0) {
        Command* const command = running[--running_count];
        command->slots->Release(command);
    }
}

static void stop(Command* command) {
    PersistentCommand* const persistent = as_persistent(command);
    persistent->slots->Stop(persistent); /* does not wait for the thread */
    persistent->slots->Release(persistent);
}

static long references_left(void) {
    Object* const all[] = {&data_store,           &command_runner,    &component_service,
                           &presentation_service, &parameter_service, &thread_service,
                           &controller,           &context,           &procedure_controller};
    long count = 0;
    for (size_t i = 0; i < sizeof all / sizeof *all; ++i)
        count += atomic_load(&all[i]->references);
    return count;
}

static int host(Library module) {
    get_class_object = (GetClassObject*)find(module, "DllGetClassObject");
    CanUnloadNow* const can_unload_now = (CanUnloadNow*)find(module, "DllCanUnloadNow");
    if (!get_class_object || !can_unload_now || !find_platform(module))
        return 2;

    puts("sum");
    if (FAILED(run(L"sum")))
        return 1;

    puts("countdown");
    if (FAILED(run(L"countdown")))
        return 1;
    join_threads();

    puts("long countdown, stopped");
    if (FAILED(run(L"long countdown")))
        return 1;
    stop(running[0]);
    join_threads();
    printf("  commands that reported a stop: %d\n", atomic_load(&stopped_count));

    clear_store();
    const bool all_gone = references_left() == 0 && can_unload_now() == S_OK;
    puts(all_gone ? "nothing is left: the module can be unloaded" : "something is left");
    return all_gone ? 0 : 1;
}

int main(int argc, char** argv) {
    if (argc != 2) {
        fputs("usage: minimal_host MODULE\n", stderr);
        return 2;
    }
    const Library module = load(argv[1]);
    if (!module) {
        fprintf(stderr, "minimal_host: cannot load %s\n", argv[1]);
        return 2;
    }
    const int exit_code = host(module);
    unload(module);
    return exit_code;
}
