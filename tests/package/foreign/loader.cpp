// A host that loads another module while it runs.
#include <dlfcn.h>

#include <cstdio>

int main()
{
    void* module = dlopen(MODULE_FILE, RTLD_NOW | RTLD_LOCAL);
    void* entry = module ? dlsym(module, "callEveryMember") : nullptr;
    if (!entry) {
        std::fprintf(stderr, "%s\n", dlerror());
        return 1;
    }
    const int failures = reinterpret_cast<int (*)(const char*)>(entry)(FIGURES_DIR "/human.urdf");
    std::printf("%s: %d checks failed\n", MODULE_FILE, failures);
    return failures == 0 ? 0 : 1;
}
