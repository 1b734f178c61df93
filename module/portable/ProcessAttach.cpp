// Unloading releases the cached class objects; loading takes no work.

#include "module/Module.h"

__attribute__((destructor)) static void DetachProcess() {
    vant::Module().ReleaseClassObjects();
}
