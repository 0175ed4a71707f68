// Model files that a person has are copied into the folder of models, as readable as what else they write.
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>

#include "StoreFixture.h"

using namespace korvane;
using namespace korvane::test;
namespace fs = std::filesystem;

namespace {

std::atomic<int> maskChanges = 0;

mode_t setMask(mode_t mask) {
    return static_cast<mode_t>(::syscall(SYS_umask, mask));
}

}  // namespace

// Stands before the C library's. For as long as it is changed, files of other threads would be open to all.
extern "C" mode_t umask(mode_t mask) noexcept {
    ++maskChanges;
    return setMask(mask);
}

namespace {

class ModelImport : public StoreFixture {
  protected:
    /// \return the rights of the copy, made while files of the person's get no more than `mask` leaves them.
    mode_t rightsUnder(mode_t mask) {
        const mode_t before = setMask(mask);
        const auto model = store().add(folder.file("downloads/mine.bin", larger));
        setMask(before);
        struct stat info {};
        EXPECT_EQ(::stat(model.file.c_str(), &info), 0);
        return info.st_mode & 0777;
    }
};

TEST_F(ModelImport, aCopyIsAsReadableAsWhatElseThePersonWrites) {
    EXPECT_EQ(rightsUnder(022), 0644U);
    EXPECT_EQ(rightsUnder(0077), 0600U);
    EXPECT_EQ(rightsUnder(002), 0664U);
}

TEST_F(ModelImport, theMaskOfTheProcessIsNeverTouched) {
    maskChanges = 0;
    rightsUnder(022);
    EXPECT_EQ(maskChanges, 0);
}

TEST_F(ModelImport, whileItIsCopiedItHasAHiddenNameOfItsOwn) {
    std::vector<std::string> names;
    store().add(folder.file("downloads/mine.bin", larger), {}, [&](double) {
        for (const auto& entry : fs::directory_iterator(folder.path() / own))
            names.push_back(entry.path().filename().string());
    });
    ASSERT_FALSE(names.empty());
    for (const auto& name : names)
        EXPECT_TRUE(name.starts_with(".adding-")) << name;
}

}  // namespace
