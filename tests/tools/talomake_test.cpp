#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <sstream>

#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"

namespace {

using namespace test_support;
using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;

struct result_t {
    int status;  // 99: a sanitizer spoke, from 128 on: a signal
    std::string out;
    std::string err;
};

// A home directory with a card of two photographs, a movie and texts, and a book that albums are made in.
class talomake : public testing::Test {
  protected:
    void SetUp() override {
        run("mkdir -p card book/txt; printf 'Book\\nBook\\n' > book/txt/head.txt");
        run("cd card; echo m >clip.MOV; echo C >a.jpg.txt; touch .hidden.jpg; printf 'Card\\nCard\\n' >head.txt");
        write_file(home_ / "card/a.jpg", make_camera_jpeg({.width = 200, .height = 120}, 1, false));
        write_file(home_ / "card/B.JPG", make_camera_jpeg({.width = 64, .height = 48, .seed = 2}, 6, true));
    }

    // What a shell in the home directory answers.
    result_t run(const std::string& command) {
        const std::string program = "talomake() { '" TALOMAKE "' \"$@\"; }\n";
        const std::string home =
            "export HOME=" + home_.path() + " ASAN_OPTIONS=exitcode=99 UBSAN_OPTIONS=exitcode=99\n";
        const std::string streams = " >" + output_.path() + "/out 2>" + output_.path() + "/err </dev/null";
        const int status = std::system((program + home + "{ cd; " + command + "\n}" + streams).c_str());
        const blob_t out = read_file(output_ / "out");
        const blob_t err = read_file(output_ / "err");
        return {WEXITSTATUS(status), {out.begin(), out.end()}, {err.begin(), err.end()}};
    }

    temp_dir_t home_;
    temp_dir_t output_;
};

TEST_F(talomake, wrong_use_is_one_line_and_touches_nothing) {
    ASSERT_EQ(run("mkdir -p book/in/original; talomake album card old").status, 0);
    const std::string state = "find . -printf '%p %T@ %s\\n' | sort";
    const std::string before = run(state).out;
    std::istringstream uses(
        ";none;--bogus;album;album card;album none new;album card/a.jpg new;album card none/new;album card card/a.jpg;"
        "album card '';album '' new;album card book;album . new card;album old/size0 old;album old/thumb old;"
        "album old/html old;album old/txt old --replace;album old/movie old clip.MOV;update;update none;update "
        "card/a.jpg;"
        "update old none;book;book none;book old;turn old 90;turn old 45 a.jpg;turn old 90 a.jpg a.jpg;"
        "turn old 90 ../original/a.jpg;turn old 90 clip.MOV;turn card 90 a.jpg;update --jobs 0 old;exif;exif "
        "card/a.jpg none;exif card;"
        "album card new --bogus;album card new missing.jpg;album card new ../card/a.jpg;album card new ..;"
        "album card new '';album card new a.jpg a.jpg;album card new 'two\nlines';album card new --rotate a.jpg;"
        "album card new --rotate a.jpg=45;album card new --rotate a.jpg=090;album card new --rotate clip.MOV=90;"
        "album card new --rotate .hidden.jpg=90;album card new B.JPG --rotate a.jpg=90;"
        "album card new --rotate a.jpg=90 --rotate a.jpg=180;album card new --shrink-size 0,768;"
        "album card new --shrink-size 1024;album card new --shrink-size 1024x768;album card new --shrink-size -1,5;"
        "album card new --quality 101;album card new --quality '';album card new --progress often;"
        "verify;verify none;verify card --prune;album card new --verify=1;"
        "publish;publish old;publish old old;publish old old/new;publish old card;publish card new;publish none new;"
        "publish old none/new;publish old card/a.jpg;publish book book/new;publish old '';publish old new --bogus;"
        "card;card card;card none book;card card none;card card old;card card card;card . book;card card . --check;"
        "card card card/ book;card card book --album ../x;card card book --album .x;card '' book;"
        "look none;look ./none;look card/clip.MOV/;look --set;look --set none;look plain gallery;"
        "album card new --title 'two\nlines';album card new --head none;album card new --last card");
    for (std::string use; std::getline(uses, use, ';');) {
        SCOPED_TRACE(use);
        const result_t result = run("talomake " + use);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_THAT(result.err, MatchesRegex("talomake: [^\n]+\n"));
        EXPECT_EQ(run(state).out, before);
    }
    for (const std::string command :
         {"", "album ", "update ", "verify ", "book ", "turn ", "exif ", "look ", "publish ", "card "}) {
        EXPECT_THAT(run("talomake " + command + "--help").out, HasSubstr("talomake " + command + "[OPTIONS] "));
    }
}

TEST_F(talomake, makes_an_album_in_a_book) {
    const result_t result = run(
        "printf 'Opening\\nlines' >o; talomake album card/ book/new/ --title 'My title' --head o --rotate a.jpg=90");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "book/new/index.html\n");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(run("cat book/new/txt/head.txt").out, "My title\r\nMy title\r\nOpening\r\nlines\r\n");
    EXPECT_EQ(run("cmp card/a.jpg.txt book/new/txt/a.jpg.txt && cmp card/B.JPG book/new/size0/B.JPG").status, 0);
    EXPECT_EQ(decode(read_file(home_ / "book/new/size0/a.jpg")).height, 200U);
    EXPECT_THAT(run("cat book/new/index.html").out, HasSubstr("<h1>My title</h1></CENTER>\n<br>Opening\n"));
    EXPECT_THAT(run("cat book/index.html").out, HasSubstr("<td>new<td>1+2<td>"));
}

TEST_F(talomake, publishes_and_tells_what_is_wrong) {
    run("talomake album card book/new; cp -r book before");
    EXPECT_EQ(run("talomake publish book site && diff -r book before && find site -name original -o -name txt").out,
              "site/index.html\n");
    EXPECT_EQ(run("cmp book/new/size0/B.JPG site/new/size0/B.JPG").status, 1);
    EXPECT_EQ(run("talomake publish --keep-data book site && cmp book/new/size0/B.JPG site/new/size0/B.JPG").status, 0);
    EXPECT_EQ(run("rm book/new/thumb/*; talomake update book; talomake publish book site/").err, "");
    const result_t result = run("rm book/new/movie/clip.MOV; talomake publish book site");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "site/new/index.html: leads to new/movie/clip.MOV, which is not there.\n");
    run("rm -r book/new; talomake book book");
    EXPECT_THAT(run("talomake publish book site").err, MatchesRegex("talomake: [0-9]+ files that .+ --prune .+\n"));
    EXPECT_EQ(run("talomake publish --prune book site && ls -A site").out,
              "site/index.html\n.taloram-published\nindex.html\n");
}

TEST_F(talomake, takes_the_title_from_the_nearest_place) {
    struct case_t {
        const char *options, *in_album, *in_card, *title;
    };
    for (const case_t& c : {case_t{"--title Option", "Old", "Card", "Option"},
                            {"", "Old", "Card", "Old"},
                            {"", "", "Card", "Card"},
                            {"", "", "", "album"},
                            {"--title ''", "Old", "", "album"}}) {
        SCOPED_TRACE(c.title);
        run("mkdir -p album/txt; echo " + std::string(c.in_album) + " >album/txt/head.txt");
        run("echo " + std::string(c.in_card) + " >card/head.txt");
        EXPECT_EQ(run(std::string("talomake album card album clip.MOV ") + c.options).status, 0);
        EXPECT_EQ(run("head -n 1 album/txt/head.txt").out, c.title + std::string("\r\n"));
    }
}

TEST_F(talomake, honours_the_settings_file_and_lets_options_win) {
    write_file(home_ / ".taloram", "shrink_size=100,100\r\njpeg_compress=10\r\n");
    EXPECT_EQ(run("talomake album card low && talomake album card high --quality 95").status, 0);
    EXPECT_EQ(run("talomake album card small --shrink-size 50,50").status, 0);
    EXPECT_GT(read_file(home_ / "high/size1/a.jpg").size(), read_file(home_ / "low/size1/a.jpg").size());
    EXPECT_EQ(run("ls */size2/a.jpg").out, "small/size2/a.jpg\n");
}

TEST_F(talomake, sets_a_look_and_nothing_else) {
    EXPECT_THAT(run("talomake look").out, MatchesRegex("\\* bare     .+\n  gallery  .+\n  plain    .+\n"));
    const std::string settings = "shrink_size=50,50\r\nhtml_header=<mine>\r\n";
    write_file(home_ / ".taloram", settings);
    EXPECT_THAT(run("talomake look --set gallery").out, HasSubstr("It was: <mine>\n"));
    EXPECT_THAT(run("talomake look").out, HasSubstr("\n* gallery "));
    EXPECT_EQ(run("talomake album card new && ls -d new/size2").status, 0) << "the size that was set";
    EXPECT_EQ(run("talomake look gallery >line; grep -cxFe \"\t$(cat line)\" new/index.html new/list.html "
                  "new/html/a_1.html")
                  .out,
              "new/index.html:1\nnew/list.html:1\nnew/html/a_1.html:1\n");
    EXPECT_EQ(run("echo '<meta>' >own.html; talomake look --set ./own.html && talomake look ./own.html").status, 0);
    EXPECT_THAT(run("cat .taloram").out, HasSubstr("\r\nhtml_header=<meta>\r\n"));
    // What can't be read is not replaced by defaults.
    const result_t unread = run("rm .taloram; mkdir .taloram; talomake look --set plain");
    EXPECT_EQ(unread.status, 1);
    EXPECT_EQ(unread.out, "");
    EXPECT_THAT(unread.err, MatchesRegex(".*/.taloram: can't be read, [^\n]+\n"));
    EXPECT_EQ(run("unset HOME; talomake look --set plain").status, 1);
}

TEST_F(talomake, shows_progress_apart_from_errors) {
    EXPECT_THAT(run("talomake album card always --progress always").err,
                MatchesRegex("(\r[^\r\n]+\n?)*\rWriting zoom pages +\\[#+\\] +2/2 +[0-9.]+ files/s\n"));
    run("echo no photograph > card/b.jpg");
    EXPECT_THAT(
        run("talomake album card broken --progress always a.jpg b.jpg").err,
        MatchesRegex("(\rCopying[^\r\n]*)+\n(\rMaking sizes[^\r\n]+\r +\r([^\r\n]+\n)+)+\rMaking sizes.* 1/2 .*\n"));
    const result_t quiet = run("talomake album card broken a.jpg b.jpg");
    EXPECT_EQ(quiet.status, 1);
    EXPECT_EQ(quiet.out, "");
    EXPECT_THAT(quiet.err, MatchesRegex("([^\r\n]+\n)+shrink\\(\\) failed.\n"));

    const int terminal = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
    if (grantpt(terminal) != 0 || unlockpt(terminal) != 0) {
        GTEST_SKIP() << "no pseudo-terminals here";
    }
    const std::string on_terminal = std::string(" 2>") + ptsname(terminal);
    char seen[4096] = "";
    run("talomake album card never a.jpg --progress never" + on_terminal);
    EXPECT_LE(read(terminal, seen, sizeof seen), 0) << seen;
    run("talomake album card auto a.jpg" + on_terminal);
    EXPECT_GT(read(terminal, seen, sizeof seen), 0);
    close(terminal);
}

TEST_F(talomake, updates_and_turns) {
    write_file(home_ / ".taloram", "shrink_size=100,100\r\n");
    ASSERT_EQ(run("talomake album card book/one && talomake album card book/two B.JPG").status, 0);
    EXPECT_EQ(run("rm -r */one/size1/a.jpg */two/index.html */two/thumb */index.html; talomake update book/").status,
              0);
    EXPECT_EQ(run("ls */one/size1/a.jpg */two/thumb/B.JPG */*/index.html */index.html && rm */index.html").status, 0);
    EXPECT_EQ(run("talomake book book && ls */index.html").status, 0);
    EXPECT_EQ(run("talomake turn book/one 270 a.jpg && grep '>120x200 (' book/one/index.html").status, 0);
    // B.JPG is shown upright by its EXIF data until it is turned.
    EXPECT_EQ(run("talomake turn book/one 180 B.JPG").status, 0);
    EXPECT_EQ(decode(read_file(home_ / "book/one/size0/B.JPG")).height, 64U);
    EXPECT_EQ(run("talomake exif book/one/size0/B.JPG").err, "book/one/size0/B.JPG: no EXIF summary.\n");
    EXPECT_EQ(run("rm book/one/size1/a.jpg; talomake turn book/one 90 a.jpg").err,
              "book/one/size1/a.jpg: can't be read, nothing was turned.\nturn_photos() failed.\n");
}

TEST_F(talomake, replaces_nothing_silently) {
    ASSERT_EQ(run("talomake album card new && cp -p card/B.JPG card/a.jpg && echo other >card/clip.MOV").status, 0);
    const std::string state = "find new -printf '%p %T@ %s\\n' | sort";
    const std::string before = run(state).out;
    const result_t refused = run("talomake album card new --title Other");
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.out, "");
    EXPECT_EQ(refused.err,
              "new/original/a.jpg: there already, with other contents.\n"
              "new/movie/clip.MOV: there already, with other contents.\n"
              "talomake: nothing was imported. Files that differ: 2; --replace replaces them.\n");
    EXPECT_EQ(run(state).out, before);
    EXPECT_EQ(run("talomake album card new --replace && cmp card/a.jpg new/original/a.jpg").status, 0);
    EXPECT_EQ(run("talomake album new/original new a.jpg && talomake album card new").status, 0);

    // A copy of the damaged original is what the album has, and not what was imported.
    const result_t damaged =
        run("talomake album card v --verify; cp v/SHA256SUMS sums; echo x >>v/original/a.jpg; cp -r v/original back;"
            "talomake album back v");
    EXPECT_EQ(damaged.status, 1);
    EXPECT_EQ(damaged.err,
              "v/original/a.jpg: has another sum in SHA256SUMS.\n"
              "talomake: nothing was imported. Files that differ: 1; --replace replaces them.\n");
    EXPECT_EQ(run("cmp sums v/SHA256SUMS && talomake album back v --replace && talomake verify v").status, 0);

    const result_t full = run("truncate -s 8T card/clip.MOV; talomake album card newer");
    EXPECT_EQ(full.status, 1);
    EXPECT_THAT(full.err, MatchesRegex("newer: [0-9.]+ TiB more free space is needed for this import.\n"));
    EXPECT_NE(run("ls newer").status, 0);
    EXPECT_EQ(run("ulimit -f 1; talomake album card newer a.jpg").status, 1) << "a limit is a failed write";
}

TEST_F(talomake, verifies_and_keeps_going) {
    const result_t result =
        run("echo no photo >card/b.jpg; echo n >card/c.jpg; talomake album card book/k --keep-going --verify");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "book/k/index.html\n");
    EXPECT_THAT(result.err, EndsWith("\ntalomake: 2 of 6 files failed: b.jpg, c.jpg\n"));
    EXPECT_THAT(run("cat book/index.html").out, HasSubstr("<td>k<td>1+2<td>"));
    EXPECT_EQ(run("cd book/k && sha256sum --strict -c SHA256SUMS").status, 0);

    const result_t good = run("talomake verify book");
    EXPECT_EQ(good.status, 0);
    EXPECT_EQ(good.out, "book/k: 3 files as imported.\n");
    EXPECT_EQ(good.err, "");
    const result_t bad = run("mkdir -p book/l/original; rm book/k/original/a.jpg; talomake verify book card");
    EXPECT_EQ(bad.status, 1);
    EXPECT_EQ(bad.out, "");
    EXPECT_EQ(bad.err, "book/k/original/a.jpg: missing.\nbook/l: has no SHA256SUMS.\ncard: has no album.\n");

    const result_t told = run("rm -r book/k/SHA256SUMS book/l; talomake update book");
    EXPECT_EQ(told.status, 0);
    EXPECT_THAT(told.err, HasSubstr("book/k/original/a.jpg: gone; --prune removes its sizes, thumbnail and pages.\n"));
    EXPECT_EQ(run("talomake update --prune book && ls book/k/*/a*").out, "book/k/txt/a.jpg.txt\n");
}

TEST_F(talomake, proves_a_card) {
    const std::string cleared = "Every file of the card is in the book: it may be cleared.\n";
    EXPECT_EQ(run("talomake card --check card book").status, 1);
    const result_t result = run("talomake card --list --album all card book");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(
        result.out,
        "book/all/index.html\n"
        "card/B.JPG\tbook/all/original/B.JPG\ncard/a.jpg\tbook/all/original/a.jpg\n"
        "card/a.jpg.txt\tbook/all/txt/a.jpg.txt\ncard/clip.MOV\tbook/all/movie/clip.MOV\n"
        "card/head.txt\tbook/all/txt/card-head.txt\nPassed over, hidden: 1\n"
        "Files of the card: 5; in the book before: 0; imported: 5; equal to one of these: 0; not in the book: 0\n" +
            cleared);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(run("mkdir card/DCIM; mv card/a.jpg card/DCIM; talomake card --check card book | tail -n 1").out,
              "Every file of the card's DCIM is in the book: DCIM may be cleared.\n");
    const result_t missing = run("printf x >card/DCIM/$(printf 'a\\nb'); talomake card --check card book");
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.err,
              "card/DCIM/a?b: not in the book: no file of the book has its contents\n"
              "talomake: 1 of 2 files are not in the book. Keep the card.\n");
    EXPECT_EQ(run("mkdir no; talomake card no book").err,
              "no: no file was found there.\n"
              "talomake: 0 of 0 files are not in the book, and not all could be looked at or done. Keep the card.\n");
}

TEST_F(talomake, works_alike_with_any_number_of_jobs) {
    run("for i in 1 2 3 4 5; do cp card/a.jpg card/a$i.jpg; head -c $((i * 1000)) card/B.JPG >card/broken$i.jpg; done");
    const auto import = [this](const std::string& options) {
        const std::string clear = "rm -rf made; talomake album --keep-going --trace card made " + options;
        const result_t made = run(clear + "; echo $?; sed -i '/^HTML Generated/d' made/*.html made/*/*.html");
        return made.out + made.err + run("cd made; find -type f -exec md5sum {} + | sort").out;
    };
    const std::string alone = import("--jobs 1");
    EXPECT_THAT(alone, HasSubstr("broken1.jpg"));
    EXPECT_EQ(import("--jobs 3"), alone);
    EXPECT_EQ(import(""), alone);
}

TEST_F(talomake, prints_exif) {
    exif_builder_t camera;
    camera.rational(exif_builder_t::exif, 0x829D, 28, 10).rational(exif_builder_t::exif, 0x920A, 73, 10);
    write_file(home_ / "card/a.jpg", make_jpeg({.segments = {{0xE1, camera.app1()}}}));
    const std::string plain = "card/a.jpg\n\tf=7.3mm, f/2.8\t\t, \n";
    EXPECT_EQ(run("export LC_ALL=de_DE.UTF-8; talomake exif card/a.jpg").out, plain);
    EXPECT_THAT(run("talomake exif --html card/a.jpg").out, HasSubstr("\t<br>f=7.3mm"));
    const result_t mixed = run("talomake exif card/clip.MOV card/a.jpg card/a.jpg");
    EXPECT_EQ(mixed.status, 1);
    EXPECT_EQ(mixed.out, "card/clip.MOV\n\n" + plain + plain);
    EXPECT_THAT(mixed.err, EndsWith("card/clip.MOV: no EXIF summary.\n"));
    EXPECT_EQ(run("talomake exif card/a.jpg >/dev/full").status, 1);
    EXPECT_EQ(run("talomake exif card/a.jpg >&-").status, 1);
}

TEST_F(talomake, survives_real_photographs) {
    if (real_photos().empty()) {
        GTEST_SKIP() << "no real photographs here";
    }
    const std::string script = "cd '" + real_photos() + R"(' || echo none
        check() { e=$(talomake "$@" 2>&1 >/dev/null); case $?:$e in 0:* | 1:?*) ;; *) echo "$@: $e" ;; esac; }
        for d in *; do test -d $d || continue; check album $d $HOME/$d; check exif $d/*; done
        for f in damaged/*; do check album damaged $HOME/${f#*/} ${f#*/}; done)";
    EXPECT_EQ(run(script).out, "");
}

}  // namespace
