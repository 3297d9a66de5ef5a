#include "Bundle.h"

#include "TestFiles.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

namespace velmora::test {
namespace {

TEST(BundleTest, pathForResource_compiledIn_canBeRead) {
    const QString path = Bundle::pathForResource("velmora-Info", "plist");
    EXPECT_EQ(path, ":/velmora-Info.plist");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray version =
        "<key>CFBundleShortVersionString</key>\n    <string>" VELMORA_VERSION "</string>";
    EXPECT_TRUE(file.readAll().contains(version));
}

TEST(BundleTest, pathForResource_unknown_isEmpty) {
    EXPECT_EQ(Bundle::pathForResource("velmora-Info", "txt"), "");
    EXPECT_EQ(Bundle::pathForResource("nothing", "plist"), "");
    EXPECT_EQ(Bundle::pathForResource("", ""), "");
}

TEST(BundleTest, pathForResource_installedToo_isTheInstalledOne) {
    const TemporaryFolder folder;
    const QDir root(QString::fromStdString(folder.path().string()));
    ASSERT_TRUE(root.mkpath("bin") && root.mkpath("share/velmora"));
    writeFile(folder.path() / "share/velmora/velmora-Info.plist", "installed");
    const QString found = Bundle::pathForResource("velmora-Info", "plist", root.filePath("bin"));
    QFile file(found);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << found.toStdString();
    EXPECT_EQ(file.readAll(), "installed");
}

TEST(BundleTest, pathForResource_folderOfThatName_isNotTaken) {
    const TemporaryFolder folder;
    const QDir root(QString::fromStdString(folder.path().string()));
    ASSERT_TRUE(root.mkpath("bin") && root.mkpath("share/velmora/velmora-Info.plist"));
    EXPECT_EQ(Bundle::pathForResource("velmora-Info", "plist", root.filePath("bin")),
              ":/velmora-Info.plist");
}

} // namespace
} // namespace velmora::test
