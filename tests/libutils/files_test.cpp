#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "libutils/files/directory.h"
#include "libutils/files/file_copy.h"
#include "libutils/files/path.h"
#include "libutils/files/read_file.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"

using test_support::read_file;
using test_support::write_file;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TEST(Listings, SortedByByteValue) {
    const test_support::temp_dir_t dir;
    for (const char* name : {"b.jpg", "A.jpg", ".hidden", "a.jpg"}) {
        write_file(dir / name, std::string("x"));
    }
    ASSERT_TRUE(libutils::mkdir((dir / "sub").c_str()));
    EXPECT_TRUE(libutils::mkdir((dir / "sub").c_str())) << "there already";
    EXPECT_FALSE(libutils::mkdir((dir / "b.jpg").c_str()));
    ASSERT_EQ(symlink("sub", (dir / "link").c_str()), 0);
    std::list<std::string> names = {"old"};
    EXPECT_TRUE(libutils::getfiles(names, dir.path().c_str()));
    EXPECT_THAT(names, ElementsAre(".hidden", "A.jpg", "a.jpg", "b.jpg", "link"));
    EXPECT_TRUE(libutils::getdirs(names, dir.path().c_str()));
    EXPECT_THAT(names, ElementsAre("sub"));
    EXPECT_FALSE(libutils::getfiles(names, (dir / "missing").c_str()));
    EXPECT_THAT(names, IsEmpty());
}

TEST(FileCopy, CopiesBytesAndTimes) {
    using copy_t = bool (*)(const char*, const char*);
    for (const copy_t copy : {static_cast<copy_t>(libutils::filecopy), static_cast<copy_t>(libutils::filecopy1)}) {
        for (const size_t size : {size_t{0}, size_t{1}, size_t{4096}, size_t{4097}}) {
            SCOPED_TRACE(size);
            const test_support::temp_dir_t dir;
            write_file(dir / "from", std::string(size, 'x'));
            write_file(dir / "to", std::string(5000, 'o'));
            const timespec times[2] = {{1000000, 5}, {2000000, 999999999}};
            ASSERT_EQ(utimensat(AT_FDCWD, (dir / "from").c_str(), times, 0), 0);
            EXPECT_TRUE(copy((dir / "from").c_str(), (dir / "to").c_str()));
            EXPECT_EQ(read_file(dir / "to"), read_file(dir / "from"));
            struct stat status {};
            ASSERT_EQ(stat((dir / "to").c_str(), &status), 0);
            EXPECT_EQ(status.st_mtim.tv_sec, 2000000);
            EXPECT_EQ(status.st_mtim.tv_nsec, 0);
            EXPECT_TRUE(copy((dir / "from").c_str(), (dir.path() + "/./from").c_str()));
            EXPECT_EQ(read_file(dir / "from").size(), size) << "a copy onto itself";
        }
    }
}

TEST(Listings, UnfinishedFilesAreLeftOut) {
    const test_support::temp_dir_t dir;
    for (const char* name : {".taloram-new-12-3", ".taloram-new-12-IMG.JPG", ".taloram-new-12", ".taloram-new-a-3"}) {
        write_file(dir / name, std::string("x"));
    }
    std::list<std::string> names;
    EXPECT_FALSE(libutils::list_files(names, dir.path()));
    EXPECT_THAT(names, ElementsAre(".taloram-new-12", ".taloram-new-a-3"));
    EXPECT_TRUE(libutils::is_absent(libutils::list_files(names, dir / "missing")));
    EXPECT_TRUE(libutils::is_absent(libutils::list_files(names, dir / ".taloram-new-12/below")));
}

TEST(ReadFile, ReadsRegularFilesOnly) {
    const test_support::temp_dir_t dir;
    write_file(dir / "text", std::string("text"));
    ASSERT_EQ(mkfifo((dir / "pipe").c_str(), 0600), 0);
    std::string text = "old";
    for (const char* name : {"pipe", "../../dev/zero", "."}) {
        const std::error_code failure = libutils::read_file(text, dir / name, 10);
        EXPECT_TRUE(failure && !libutils::is_absent(failure)) << name;
    }
    EXPECT_TRUE(libutils::is_absent(libutils::read_file(text, dir / std::string(300, 'n'), 10)));
    EXPECT_EQ(libutils::read_file(text, dir / "text", 3), std::errc::file_too_large);
    EXPECT_EQ(text, "old");
    EXPECT_FALSE(libutils::read_file(text, dir / "text", 4));
    EXPECT_EQ(text, "text");
}

TEST(FileCopy, EveryFailureCounts) {
    const test_support::temp_dir_t dir;
    write_file(dir / "from", std::string(2000, 'x'));
    ASSERT_EQ(mkfifo((dir / "pipe").c_str(), 0600), 0);
    EXPECT_FALSE(libutils::copy_file(dir / "from", dir / "to"));
    EXPECT_EQ(read_file(dir / "to").size(), 2000U);
    EXPECT_TRUE(libutils::is_absent(libutils::copy_file(dir / "missing", dir / "to")));
    EXPECT_TRUE(libutils::copy_file(dir / "pipe", dir / "to"));
    const test_support::file_size_limit_t limit(1000);
    EXPECT_EQ(libutils::copy_file(dir / "from", dir / "to"), std::errc::file_too_large);
}

TEST(FileCopy, Failures) {
    const test_support::temp_dir_t dir;
    write_file(dir / "from", std::string("x"));
    const std::string missing = dir / "missing";
    const std::string from = dir / "from";
    const std::string nowhere = dir / "no/where";
    EXPECT_EQ(test_support::stderr_of([&] { EXPECT_FALSE(libutils::filecopy(missing.c_str(), from.c_str())); }), "");
    EXPECT_EQ(test_support::stderr_of([&] { EXPECT_FALSE(libutils::filecopy(from.c_str(), nowhere.c_str())); }), "");
    EXPECT_EQ(test_support::stderr_of([&] { EXPECT_FALSE(libutils::filecopy1(missing.c_str(), from.c_str())); }),
              missing + ": No such file or directory\n");
    EXPECT_EQ(test_support::stderr_of([&] { EXPECT_FALSE(libutils::copydate(missing.c_str(), from.c_str())); }),
              missing + ": stat(2) error.\n");
    EXPECT_EQ(test_support::stderr_of([&] { EXPECT_FALSE(libutils::copydate(from.c_str(), missing.c_str())); }),
              missing + ": No such file or directory\n");
}

TEST(Searchpath, LooksAlongPath) {
    const test_support::temp_dir_t dir;
    write_file(dir / "x.msg", std::string("x"));
    const std::string old = getenv("PATH");
    setenv("PATH", ("/nowhere:" + dir.path()).c_str(), 1);
    EXPECT_EQ(libutils::searchpath("x.msg", nullptr), dir / "x.msg");
    EXPECT_EQ(libutils::searchpath("y.msg", nullptr), "y.msg");
    EXPECT_EQ(libutils::searchpath(dir / "x.msg", nullptr), dir / "x.msg");
    unsetenv("PATH");
    EXPECT_EQ(libutils::searchpath("x.msg", (dir / "program").c_str()), dir.path() + "//x.msg");
    setenv("PATH", old.c_str(), 1);
}

}  // namespace
