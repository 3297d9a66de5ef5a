#pragma once

extern "C" {
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
}

namespace velmora {

/// libavfilter, loaded when it is first needed. It brings a hundred other libraries, which would
/// cost every start and every copy 12 MiB and 20 ms. The members are its functions.
struct FilterLibrary {
    /// That of the process; null when it is not there, which the log then tells.
    static const FilterLibrary* instance();

    decltype(&::avfilter_get_by_name) getByName = nullptr;
    decltype(&::avfilter_graph_alloc) allocGraph = nullptr;
    decltype(&::avfilter_graph_free) freeGraph = nullptr;
    decltype(&::avfilter_graph_alloc_filter) allocFilter = nullptr;
    decltype(&::avfilter_graph_create_filter) createFilter = nullptr;
    decltype(&::avfilter_graph_parse_ptr) parseGraph = nullptr;
    decltype(&::avfilter_graph_config) configureGraph = nullptr;
    decltype(&::avfilter_init_str) initFilter = nullptr;
    decltype(&::avfilter_inout_alloc) allocLinks = nullptr;
    decltype(&::avfilter_inout_free) freeLinks = nullptr;
    decltype(&::av_buffersrc_parameters_alloc) allocSourceParameters = nullptr;
    decltype(&::av_buffersrc_parameters_set) setSourceParameters = nullptr;
    decltype(&::av_buffersrc_add_frame) addFrame = nullptr;
    decltype(&::av_buffersink_get_frame) takeFrame = nullptr;
    decltype(&::av_buffersink_get_time_base) sinkTimeBase = nullptr;
};

} // namespace velmora
