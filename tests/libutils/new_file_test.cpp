#include "libutils/files/new_file.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "libutils/bytes/ofsvector.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"
#include "tests/support/restrictions.h"

namespace fs = std::filesystem;
using namespace libutils;
using test_support::read_file;
using test_support::temp_dir_t;
using test_support::write_file;

namespace {

std::string text_of(const std::string& path) {
    const auto bytes = read_file(path);
    return {bytes.begin(), bytes.end()};
}

// Runs the checks here and in a process without unnamed files; a failure there has been written.
void on_every_file_system(void (*checks)()) {
    checks();
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        if (!test_support::forbid_unnamed_files()) {
            _exit(77);
        }
        checks();
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 77) {
        GTEST_SKIP() << "this system has no filters for system calls";
    }
    EXPECT_EQ(status, 0) << "without unnamed files";
}

TEST(NewFile, IsCompleteOrNotThere) {
    on_every_file_system([] {
        const temp_dir_t dir;
        const std::string path = dir / "listed/p.jpg";
        fs::create_directory(dir / "listed");
        for (const std::string old : {"", "old"}) {
            SCOPED_TRACE(old.empty() ? "absent" : "there");
            const auto is_as_before = [&] {
                return (old.empty() ? !fs::exists(path) : text_of(path) == old) &&
                       std::distance(fs::directory_iterator(dir / "listed"), {}) == (old.empty() ? 0 : 1);
            };
            if (!old.empty()) {
                write_file(path, old);
                fs::create_hard_link(path, dir / "other name");
            }
            {
                new_file_t file(path, staging_t::above);
                ASSERT_TRUE(!file.open() && !file.write("half") && is_as_before());
                EXPECT_EQ(text_of(file.current_path()), "half");
            }
            EXPECT_TRUE(is_as_before()) << "given up";
            EXPECT_FALSE(write_file(path, staging_t::above, "whole"));
            EXPECT_EQ(text_of(path), "whole");
            EXPECT_EQ(old.empty() ? "" : text_of(dir / "other name"), old);
            fs::remove(path);
        }
        EXPECT_EQ(std::distance(fs::directory_iterator(dir.path()), {}), 2) << "something was left";

        fs::create_directories(path + "/full");
        EXPECT_TRUE(write_file(path, staging_t::above, "x") && replace_file(path, staging_t::above, "x"));
        EXPECT_TRUE(is_absent(write_file(dir / "missing/p", staging_t::beside, "x")));
        EXPECT_EQ(std::distance(fs::directory_iterator(dir.path()), {}), 2) << "a failure left something";
    });
}

TEST(NewFile, KeepsWhatTheUserArranged) {
    on_every_file_system([] {
        const temp_dir_t dir;
        write_file(dir / "real", std::string("old"));
        fs::permissions(dir / "real", fs::perms{0640});
        fs::create_symlink("real", dir / "link");
        new_file_t file(dir / "link", staging_t::beside);
        ASSERT_TRUE(!file.open_as_old() && !file.write("new") && !file.commit_to_disk());
        EXPECT_TRUE(fs::is_symlink(dir / "link"));
        EXPECT_EQ(text_of(dir / "real"), "new");
        EXPECT_EQ(fs::status(dir / "real").permissions(), fs::perms{0640});
    });
}

TEST(NewFile, LinksLeadWhereTheyMay) {
    using others_t = links_t::others_t;
    struct case_t {
        const char *link, *target;
        bool is_inside;
        const char* written;  // when followed
    };
    constexpr case_t cases[] = {
        {"album/txt/p", "../www/p", true, "album/www/p"},  // nothing there yet
        {"album/txt/p", "q", true, "album/txt/q"},         // beside
        {"album/txt/p", "chain", true, "album/www/p"},     // a link to a link
        {"album/disk/p", "q", true, "elsewhere/q"},        // in a directory that is a link
        {"album/txt/p", "../../elsewhere/p", false, "elsewhere/p"},
        {"album/txt/p", "../disk/p", false, "elsewhere/p"},
        {"album/txt/p", "../../album more/p", false, "album more/p"},
        {"album/txt/p", "p", false, ""},  // to itself
        {"album/txt/p", "../missing/p", false, ""},
    };
    for (const case_t& c : cases) {
        for (const others_t others : {others_t::followed, others_t::refused, others_t::replaced}) {
            SCOPED_TRACE(testing::Message() << c.link << " to " << c.target << ", " << static_cast<int>(others));
            const temp_dir_t dir;
            for (const char* name : {"/album/txt", "/album/www", "/album more", "/elsewhere"}) {
                fs::create_directories(dir.path() + name);
            }
            fs::create_directory_symlink("../elsewhere", dir / "album/disk");
            fs::create_symlink("../www/p", dir / "album/txt/chain");
            fs::create_symlink(c.target, dir / c.link);
            const bool has_target = *c.written != '\0';
            const bool is_followed = has_target && (c.is_inside || others == others_t::followed);
            const std::error_code failure =
                replace_file(dir / c.link, staging_t::above, "text", {others, dir / "album"});
            EXPECT_EQ(!failure, is_followed || others == others_t::replaced) << failure.message();
            EXPECT_EQ(failure == refusal_t::leads_out, has_target && !is_followed && others == others_t::refused);
            EXPECT_EQ(fs::is_symlink(dir / c.link), is_followed || others != others_t::replaced);
            EXPECT_EQ(has_target && fs::exists(dir / c.written), is_followed);
            EXPECT_EQ(!failure && text_of(dir / c.link) == "text", !failure);
        }
    }
}

TEST(NewFile, DevicesAndPipesStay) {
    const temp_dir_t dir;
    ASSERT_EQ(mkfifo((dir / "pipe").c_str(), 0600), 0);
    fs::create_symlink("pipe", dir / "link");
    for (const char* name : {"pipe", "link"}) {
        EXPECT_EQ(replace_file(dir / name, staging_t::beside, "x"), refusal_t::not_a_file);
    }
    EXPECT_EQ(write_file(dir / "pipe", staging_t::beside, "x"), refusal_t::not_a_file);
    EXPECT_FALSE(write_file(dir / "link", staging_t::beside, "x")) << "the link itself is replaced";
    EXPECT_TRUE(fs::is_fifo(dir / "pipe") && fs::is_regular_file(dir / "link"));
    EXPECT_EQ(std::distance(fs::directory_iterator(dir.path()), {}), 2) << "something was left";
}

TEST(NewFile, LeftoversGoWhenTheirProgramIsGone) {
    const temp_dir_t dir;
    for (const char* name : {".taloram-new-1-1", ".taloram", ".other"}) {
        write_file(dir / name, std::string("x"));
    }
    {
        new_file_t running(dir / "page", staging_t::beside);
        ASSERT_FALSE(running.open());
        ASSERT_EQ(linkat(AT_FDCWD, running.current_path().c_str(), AT_FDCWD, (dir / ".taloram-new-2-1").c_str(),
                         AT_SYMLINK_FOLLOW),
                  0);
        remove_leftovers(dir.path());
        EXPECT_TRUE(fs::exists(dir / ".taloram-new-2-1")) << "still being written";
    }
    EXPECT_TRUE(!fs::exists(dir / ".taloram-new-1-1") && fs::exists(dir / ".taloram") && fs::exists(dir / ".other"));
    fs::create_directory(dir / "txt");
    EXPECT_FALSE(replace_file(dir / "txt/head.txt", staging_t::above, "text"));
    EXPECT_FALSE(fs::exists(dir / ".taloram-new-2-1")) << "the next text or page takes it away";
}

TEST(MappedFiles, ShrinkWithoutEndingTheProgram) {
    constexpr size_t page = 4096;
    constexpr size_t whole = 3 * page + 100;
    for (const size_t size : {size_t{0}, page, page + 1, whole - 1, whole}) {
        SCOPED_TRACE(size);
        const temp_dir_t dir;
        write_file(dir / "file", std::string(whole, 'x'));
        bytes_t bytes;
        ASSERT_TRUE(bytes.load(0, (dir / "file").c_str(), PROT_READ_ONLY, 0, false, nullptr));
        fs::resize_file(dir / "file", size);
        const bytes_t shared = bytes;
        EXPECT_EQ(std::count(bytes.begin(), bytes.end(), 'x'), size);
        EXPECT_EQ(bytes.is_intact(), size == whole);
        EXPECT_EQ(shared.is_intact(), size == whole);
        ASSERT_TRUE(bytes.resize(page));
        EXPECT_TRUE(bytes.is_intact()) << "a buffer of its own";
    }
}

}  // namespace
