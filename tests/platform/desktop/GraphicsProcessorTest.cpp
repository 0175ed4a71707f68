#include "platform/desktop/GraphicsProcessor.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QTemporaryDir>
#include <fstream>

using namespace korvane;

namespace {

/// Nothing is forbidden to root: somebody else for the time being.
class WithoutRights {
  public:
    WithoutRights() {
        if (isRoot_)
            become(65534);
    }
    ~WithoutRights() {
        if (isRoot_)
            become(0);
    }
    WithoutRights(const WithoutRights&) = delete;
    WithoutRights& operator=(const WithoutRights&) = delete;

    void forbid(const std::filesystem::path& file) const {
        if (isRoot_)
            become(0);
        EXPECT_EQ(chmod(file.c_str(), 0), 0);
        if (isRoot_)
            become(65534);
    }

  private:
    static void become(uid_t user) { EXPECT_EQ(setresuid(user, user, 0), 0); }
    const bool isRoot_ = geteuid() == 0;
};

class GraphicsProcessor : public testing::Test {
  protected:
    void add(const char* device) {
        const auto file = devices() / device;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream{file};
        chmod(file.c_str(), 0666);
    }
    std::filesystem::path devices() const { return folder_.path().toStdString(); }

  private:
    QTemporaryDir folder_;
};

TEST_F(GraphicsProcessor, isAbsentWhereNothingIsListed) {
    EXPECT_FALSE(hasGraphicsProcessor(devices()));
    EXPECT_FALSE(hasGraphicsProcessor(devices() / "no such folder"));
}

TEST_F(GraphicsProcessor, isNotACardThatOnlyShowsPictures) {
    add("dri/card0");
    EXPECT_FALSE(hasGraphicsProcessor(devices()));
    add("dri/renderD128");
    EXPECT_TRUE(hasGraphicsProcessor(devices()));
}

TEST_F(GraphicsProcessor, isAbsentForWhomItsDeviceIsForbidden) {
    add("dri/renderD128");
    for (const char* folder : {".", "dri"})
        chmod((devices() / folder).c_str(), 0755);
    const WithoutRights nobody;
    EXPECT_TRUE(hasGraphicsProcessor(devices())) << "as long as it isn't forbidden";
    nobody.forbid(devices() / "dri/renderD128");
    EXPECT_FALSE(hasGraphicsProcessor(devices()));
}

TEST_F(GraphicsProcessor, isThereWithADriverOfItsOwn) {
    for (const char* device : {"nvidiactl", "dxg", "mali0", "kgsl-3d0"}) {
        add(device);
        EXPECT_TRUE(hasGraphicsProcessor(devices())) << device;
        std::filesystem::remove(devices() / device);
    }
    EXPECT_FALSE(hasGraphicsProcessor(devices()));
}

TEST_F(GraphicsProcessor, isNotWhatDrawsUnderTheNamesOfDriversForTheProcessor) {
    for (const char* name : {"llvmpipe (LLVM 15.0.6, 256 bits)", "softpipe", "Software Rasterizer"})
        EXPECT_TRUE(isDrawnByProcessor(name)) << name;
    for (const char* name : {"", "Mesa Intel(R) UHD Graphics 620 (KBL GT2)", "AMD Radeon RX 6600", "virgl"})
        EXPECT_FALSE(isDrawnByProcessor(name)) << name;
}

}  // namespace
