#include "FilterLibrary.h"

extern "C" {
#include <libavutil/log.h>
#include <libavutil/macros.h>
}

#include <dlfcn.h>

namespace velmora {
namespace {

constexpr auto kName = "libavfilter.so." AV_STRINGIFY(LIBAVFILTER_VERSION_MAJOR);

template <typename Function> bool find(void* library, const char* name, Function& function) {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): a symbol has no type
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

/// It stays loaded until the process ends.
bool load(FilterLibrary& to) {
    void* const library = dlopen(kName, RTLD_LAZY | RTLD_LOCAL);
    return library != nullptr && find(library, "avfilter_get_by_name", to.getByName) &&
           find(library, "avfilter_graph_alloc", to.allocGraph) &&
           find(library, "avfilter_graph_free", to.freeGraph) &&
           find(library, "avfilter_graph_alloc_filter", to.allocFilter) &&
           find(library, "avfilter_graph_create_filter", to.createFilter) &&
           find(library, "avfilter_graph_parse_ptr", to.parseGraph) &&
           find(library, "avfilter_graph_config", to.configureGraph) &&
           find(library, "avfilter_init_str", to.initFilter) &&
           find(library, "avfilter_inout_alloc", to.allocLinks) &&
           find(library, "avfilter_inout_free", to.freeLinks) &&
           find(library, "av_buffersrc_parameters_alloc", to.allocSourceParameters) &&
           find(library, "av_buffersrc_parameters_set", to.setSourceParameters) &&
           find(library, "av_buffersrc_add_frame", to.addFrame) &&
           find(library, "av_buffersink_get_frame", to.takeFrame) &&
           find(library, "av_buffersink_get_time_base", to.sinkTimeBase);
}

} // namespace

const FilterLibrary* FilterLibrary::instance() {
    static FilterLibrary library;
    static const bool isThere = load(library);
    if (!isThere) {
        av_log(nullptr, AV_LOG_ERROR, "%s cannot be used\n", kName);
    }
    return isThere ? &library : nullptr;
}

} // namespace velmora
