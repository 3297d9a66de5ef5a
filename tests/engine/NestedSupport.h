#pragma once

#include "JobSupport.h"
#include "OpenWatch.h"
#include "TestMedia.h"

#include <string>
#include <vector>

namespace velmora::test {

/// A play list for `names`, each a part of two seconds.
std::string playList(const std::vector<std::string>& names);

/// The data of all video packets, as the engine reads them; empty when it does not open the file.
Bytes videoBytesOf(const std::string& path);

/// A folder with a part of a play list, and outside of it a private file with another.
class NestedFiles : public JobTest {
protected:
    NestedFiles();
    ~NestedFiles() override;

    /// A play list in the folder.
    std::string listOf(const std::vector<std::string>& names) const;
    /// In whichever way the engine is asked, it makes nothing of the file.
    void expectUnusable(const std::string& path);

    const std::string inside_ = folder_ / "inside";
    const std::string outside_ = folder_ / "outside";
    const std::string part_ = inside_ + "/part.ts";
    const std::string secret_ = outside_ + "/secret.ts";
    const std::string list_ = inside_ + "/list.m3u8";
    const std::string output_ = folder_ / "out.ts";
};

} // namespace velmora::test
