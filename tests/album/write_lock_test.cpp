#include "album/write_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <optional>

#include "album/album_update.h"
#include "album/import/import.h"
#include "album/pages/book_index.h"
#include "album/texts/comment_store.h"
#include "tests/album/album_fixture.h"

namespace {

// A lock of another program: one that this program's list does not know.
class foreign_lock_t {
  public:
    explicit foreign_lock_t(const std::string& directory) : descriptor_(open(directory.c_str(), O_RDONLY)) {
        is_locked = flock(descriptor_, LOCK_EX | LOCK_NB) == 0;
    }
    ~foreign_lock_t() { close(descriptor_); }
    foreign_lock_t(const foreign_lock_t&) = delete;
    foreign_lock_t& operator=(const foreign_lock_t&) = delete;

    bool is_locked = false;

  private:
    int descriptor_;
};

struct write_lock_test : album_test_t {
    ~write_lock_test() override { g_wait_for_writer = nullptr; }
};

TEST_F(write_lock_test, waits_for_another_program) {
    std::optional<foreign_lock_t> other(album);
    unsigned asked = 0;
    g_wait_for_writer = [&](const std::string& directory) {
        EXPECT_EQ(album, directory);
        return ++asked % 2 != 0;
    };
    put(card + "/a.mov", "a");
    const std::function<bool()> writers[] = {
        [&] { return savecommenttxt(album, "T", "", ""); },
        [&] { return savephotocomment("T", album, "p.jpg"); },
        [&] { return makehtmlbook(album); },
        [&] { return batchupdate(album, silent, silent, silent, silent); },
        [&] { return updatealbum({}, album, silent, silent, silent, silent); },
        [&] { return makealbumwithrotate(card, {{"a.mov"}}, album, silent, silent, silent, silent); },
    };
    for (const auto& writer : writers) {
        EXPECT_EQ("false\n" + album + ": another program writes there, Operation canceled\n", outcome(writer));
    }
    EXPECT_EQ(2 * std::size(writers), asked);
    EXPECT_TRUE(files_below(album).empty());

    // By the time the lock is free the name may stand for another directory.
    g_wait_for_writer = [&](const std::string&) {
        fs::rename(album, dir / "renamed");
        fs::create_directory(album);
        other.reset();
        return true;
    };
    write_lock_t lock;
    EXPECT_FALSE(lock.acquire(album));
    EXPECT_TRUE(foreign_lock_t(dir / "renamed").is_locked);
    EXPECT_FALSE(foreign_lock_t(album).is_locked);
}

TEST_F(write_lock_test, is_shared_within_a_process) {
    std::optional<write_lock_t> first(std::in_place);
    std::optional<write_lock_t> second(std::in_place);
    EXPECT_FALSE(first->acquire(album));
    EXPECT_FALSE(second->acquire(album + "/txt/.."));
    first.reset();
    EXPECT_FALSE(foreign_lock_t(album).is_locked);
    second.reset();
    EXPECT_TRUE(foreign_lock_t(album).is_locked);
    write_lock_t absent;
    EXPECT_FALSE(absent.acquire(dir / "absent")) << "what writes there tells";
}

}  // namespace
