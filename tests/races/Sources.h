#pragma once

#include "Random.h"
#include "TestFiles.h"

#include <QString>
#include <QStringList>

#include <filesystem>

namespace velmora::test {

/// A folder with files to load, good ones and others, and one for outputs.
class Sources {
public:
    Sources();

    QString video() const { return path("a.mp4"); }
    /// Any of the files; also a path where there is none.
    QString any(Random& random) const;
    /// The folder for outputs.
    QString outputs() const { return path("out"); }
    /// Takes one of the files away, or puts it back.
    void vanishOrReturn() const;
    /// Whether all files are there as they were made, and nothing else beside them.
    bool areUntouched() const;

private:
    QString path(const char* name) const { return QString::fromStdString(folder_ / name); }

    TemporaryFolder folder_;
};

} // namespace velmora::test
