#include "MediaModule.h"

#include "FailingMediaEngine.h"
#include "SystemLog.h"

#include <dlfcn.h>

namespace virlo
{

namespace
{

/// Of the file that this code was loaded from, with the final slash.
std::string folderOfLibrary()
{
    Dl_info library{};
    if (dladdr(reinterpret_cast<const void*>(&MediaModule::makeEngine), &library) == 0)
        return {};
    const std::string file = library.dli_fname;
    return file.substr(0, file.rfind('/') + 1);
}

MediaEngine* failing(const std::string& reason)
{
    systemLog("Videos cannot be played: " + reason);
    return new FailingMediaEngine(reason);
}

} // namespace

MediaEngine* MediaModule::makeEngine()
{
    void* const module = dlopen((folderOfLibrary() + path).c_str(), RTLD_NOW | RTLD_LOCAL);
    void* const maker = module != nullptr ? dlsym(module, makerName) : nullptr;
    if (maker == nullptr) {
        const char* const failure = dlerror();
        return failing(failure != nullptr ? failure : "it is not a module of this library");
    }
    if (MediaEngine* const engine = reinterpret_cast<Maker*>(maker)(VIRLO_VERSION))
        return engine;
    return failing("the module belongs to another release");
}

} // namespace virlo
