#include "engine/inference/ort_runtime.h"

#include <array>
#include <cstdio>

#include <dlfcn.h>
#include <unistd.h>

namespace zre {

namespace {

constexpr const char* kLibrary = "libonnxruntime.so";
constexpr int kNewestApi = 20;
constexpr int kOldestApi = 11; // every slot that is called stands in its table

// One runtime a process: it cannot be unloaded, and a second attempt would only repeat the first.
const ort::OrtApi* g_ort = nullptr;
bool g_triedLib = false;
std::string g_apiWhy;

const ort::OrtApiBase* apiBase(void* library)
{
    using GetApiBase = const ort::OrtApiBase* (*)();
    const auto entry = reinterpret_cast<GetApiBase>(dlsym(library, "OrtGetApiBase"));
    return entry ? entry() : nullptr;
}

const ort::OrtApi* newestApi(const ort::OrtApiBase& base, int& version)
{
    for (version = kNewestApi; version >= kOldestApi; --version)
        if (const ort::OrtApi* table = base.GetApi(static_cast<std::uint32_t>(version)))
            return table;
    return nullptr;
}

std::string versionOf(const ort::OrtApiBase& base)
{
    const char* text = base.GetVersionString ? base.GetVersionString() : nullptr;
    return text ? text : "unknown";
}

/// The table, or null with the reason.
const ort::OrtApi* load(std::string& why)
{
    void* library = ortload::open(&why);
    if (!library)
        return nullptr;
    const ort::OrtApiBase* base = apiBase(library);
    if (!base || !base->GetApi) {
        why = "ONNX Runtime has no valid OrtGetApiBase entry point.";
        return nullptr;
    }
    int version = 0;
    const ort::OrtApi* table = newestApi(*base, version);
    if (!table) {
        why = "ONNX Runtime " + versionOf(*base) + " implements no API between " +
              std::to_string(kOldestApi) + " and " + std::to_string(kNewestApi) +
              ", which this build needs.";
        return nullptr;
    }
    std::fprintf(stderr, "Zerrith: AI star separation using ONNX Runtime %s (API %d)\n",
                 versionOf(*base).c_str(), version);
    return table;
}

} // namespace

std::string ortload::exeDir()
{
    std::array<char, 4096> path{};
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    if (length <= 0)
        return {};
    const std::string whole(path.data(), static_cast<std::size_t>(length));
    return whole.substr(0, whole.rfind('/'));
}

void* ortload::open(std::string* err)
{
    void* library = dlopen((exeDir() + "/" + kLibrary).c_str(), RTLD_NOW);
    if (!library)
        library = dlopen(kLibrary, RTLD_NOW);
    if (!library)
        ort::fail(err, std::string(kLibrary) + " could not be loaded (place it next to the app).");
    return library;
}

bool ensureApi(std::string* err)
{
    if (!g_triedLib) {
        g_triedLib = true;
        g_ort = load(g_apiWhy);
    }
    return g_ort || ort::fail(err, g_apiWhy);
}

bool failed(ort::OrtStatus* status, std::string* err)
{
    if (!status)
        return false;
    const char* reason = ort::call<ort::slot::GetErrorMessage>(status);
    ort::fail(err, std::string("ONNX: ") + (reason ? reason : ""));
    ort::call<ort::slot::ReleaseStatus>(status);
    return true;
}

const ort::OrtApi* ort::api()
{
    return g_ort;
}

} // namespace zre
