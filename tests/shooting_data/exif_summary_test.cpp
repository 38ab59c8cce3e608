#include "shooting_data/exif_summary.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>

#include "talolib/option.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"

using builder_t = test_support::exif_builder_t;

namespace {

constexpr auto exif = builder_t::exif;

// The summary of a photograph with the given tags; for a page it is written twice into one stream.
std::string summary_of(const builder_t& tags, bool html = false) {
    const test_support::temp_dir_t dir;
    test_support::write_file(dir / "a.jpg", make_jpeg(test_support::photo_t{.segments = {{0xE1, tags.app1()}}}));
    std::ostringstream text;
    EXPECT_FALSE(taloram::writeexif(text, dir.path(), ".", "none.jpg", html));
    EXPECT_TRUE(taloram::writeexif(text, "", dir.path(), "a.jpg", html));
    EXPECT_TRUE(!html || taloram::writeexif(text, dir.path(), ".", "a.jpg", html));
    return text.str();
}

TEST(ExifSummary, WritesItems) {
    const auto time = [](uint32_t n, uint32_t d) { return builder_t().rational(exif, 0x829A, n, d); };
    const auto tag = [](uint16_t number, uint16_t value) { return builder_t().shorts(exif, number, {value}); };
    const auto note = builder_t().shorts(exif, 0x1015, {2}).shorts(exif, 0x100B, {2}).directory(exif, 0);
    const std::pair<builder_t, std::string> cases[] = {
        {time(1, 1).srational(exif, 0x9204, 1, 0).text(builder_t::ifd0, 0x0110, "B\n"), "\t, B\n\t, 1sec\t\t, "},
        {time(30, 10).srational(exif, 0x9204, -2, 6).text(exif, 0xA434, "L"),
         std::string("\tL\0\n\t, 3sec, -1/3 EV\t\t, ", 24)},
        {time(0, 0).rational(exif, 0x829D, 1, 0).rational(exif, 0x920A, 0, 0), "\t\t\t, "},
        {time(10, 13).srational(exif, 0x9204, 6, 3).shorts(exif, 0x9207, {255}), "\t, 0.77sec, [Unk], +2 EV\t\t, "},
        {time(2, 500).srational(exif, 0x9204, 1, -3).shorts(exif, 0x8822, {9}), "\t, 1/250sec, +1/-3 EV\tU\t, "},
        {time(0, 9).srational(exif, 0x9204, INT32_MIN, 1), "\t, 0sec, -2147483648 EV\t\t, "},
        {tag(0x8827, 65535).shorts(exif, 0xA403, {3}).shorts(exif, 0xA40A, {4}).srational(exif, 0x9204, 0, 3),
         "\t\t, iso65535\tUnknown WB, Shp Unknown, "},
        {tag(0x8827, 65535).longs(exif, 0x8831, {102400}).shorts(exif, 0x9209, {0x30}), "\t\t, iso102400\t, "},
        {tag(0x9209, 0x65), "\t\t, Flash, Return Not Detected, No Flash Function, Red-Eye Reduce\t, "},
        {builder_t().text(builder_t::ifd0, 0x010F, "Olympus").bytes(exif, 0x927C, note), "\t\t, U\tPreset , , , "},
    };
    const test_support::grouping_locale_t german;
    for (const auto& [tags, summary] : cases) {
        EXPECT_EQ(summary_of(tags), summary);
    }
    EXPECT_EQ(summary_of(time(10, 13).rational(exif, 0x920A, 73, 10).rational(exif, 0x829D, 28, 10), true),
              "\t<br>f=7.3mm, f/2.8, 0.77sec\t<br>\t<br>, \t<br>f=7mm, f/2.8, 0.77sec\t<br>\t<br>, ");
    talolib::g_option[talolib::option_trace] = 1;
    EXPECT_EQ(test_support::stdout_of([&] { EXPECT_EQ(summary_of(tag(0x9207, 7)), "\t, [OTH]\t\t, "); }),
              "new app1_marker_t complete.\nset_app1_buffer() complete.\napp1->parse() complete.\nmetering mode: 7\n");
    talolib::g_option[talolib::option_trace] = 0;
}

using row_t = std::map<std::string, std::string>;  // of expected-exif.tsv, by column

std::string expected_summary(row_t row) {
    std::string s;  // "*" among the labels: other values as they stand
    const auto on = [&](const char* column, const std::string& before, const row_t& labels, const char* behind = "") {
        const auto label = labels.find(row[column]);
        if (label != labels.end() || ((labels.empty() || labels.count("*") != 0) && !row[column].empty())) {
            s += before + (label != labels.end() ? label->second : row[column]) + behind;
        }
    };
    const bool om = row["Make"].starts_with("OM") || row["MakerNote"] == "OLYMPUS II";
    const double time = row["ExposureTime"].empty() ? 1 : std::stod(row["ExposureTime"]);
    row["time"] = (time < 1 ? "1/" : "") + std::to_string(static_cast<int>(0.5 + (time < 1 ? 1 / time : time)));
    on("Model", "\t" + row["Make"] + ", ", {}, "\n");
    on("LensModel", "\t", row["note"].starts_with("LensModel") ? row_t{{"", ""}} : row_t(), "\n");
    s += "\t";
    on("FocalLength", "f=", {{"*", ""}, {"5.859375", "5.85938"}}, "mm");
    on("FocalLengthIn35mm", "(", {}, "mm)");
    on("FNumber", ", f/", {}, row["FNumber"].find('.') == std::string::npos ? ".0" : "");
    on(row["ExposureTime"].empty() ? "" : "time", ", ", {{"*", ""}, {"1/3", "0.30"}, {"1/1027", "0.0010"}}, "sec");
    on("MeteringMode", ", ", {{"1", "[AVE]"}, {"2", "[AVG]"}, {"3", "[SPT]"}, {"5", "[ESP]"}});
    on("ExposureBias", ",", {{"1/3", "+1/3"}, {"-10/10", "-1"}, {"2/2", "+1"}, {"15/10", "+3/2"}, {"7/10", "+7/10"}},
       "EV");
    on("ExposureProgram", "\t", {{"", ""}, {"1", "M"}, {"2", "P"}, {"3", "A"}, {"5", "C"}, {"8", "l"}, {"9", "U"}});
    on("OM_FocusInfo_0x0209", ", ", {{"0", "MF"}, {"1", "AF"}});
    on("OM_FocusInfo_0x0301", "(P=", {}, ")");
    on(row["Make"].starts_with("RICOH") ? "Pentax_0x000d" : "", ", ",
       {{"16", "AF-S"}, {"18", "AF-A"}, {"32", "Contrast-detect"}}, "(Focus-priority)");
    on("Olympus_FocusMode_0x100b", ", ", {{"0", "AF"}, {"1", "MF(P=2)"}});
    on("ISO", ", iso", {});
    on("Flash", ", Flash",
       {{"1", ""}, {"15", ", Return Detected, Compulsory"}, {"25", ", Auto"}, {"31", ", Return Detected, Auto"}});
    s += "\t";
    if (row["Make"].starts_with("OLYMPUS") && !om) {
        on("Olympus_WhiteBalance_0x1015", "", {{"1 0", "Auto WB"}, {"2 4", "Preset 4000K"}});
        on("Olympus_Sharpness_0x100f", ", ", {{"", ""}, {"0", "Normal"}, {"1", "Hard"}});
        on("Olympus_Contrast_0x1029", ", ", {{"", ""}, {"0", "High"}, {"1", "Normal"}});
    } else {
        on(om ? "OM_CameraSettings_0x0500" : "WhiteBalance", "", {{"0", "AutoWB"}, {"1", "ManualWB"}, {"18", "5300K"}});
        on("Sharpness", ", Shp ", {{"0", "Normal"}, {"1", "Soft"}, {"2", "Hard"}});
        on("Saturation", ", Sat ", {{"0", "Normal"}, {"1", "Low"}, {"2", "High"}});
        on("Contrast", ", Cst ", {{"0", "Normal"}, {"1", "Soft"}, {"2", "Hard"}});
    }
    on("ColorSpace", ", ", {{"", ""}, {"1", "sRGB"}, {"65535", "Uncalibrated"}});
    on("OM_CameraSettings_0x0804", "\tLiveComp ", {{"1 23", "23"}}, " frames");
    return s;
}

TEST(ExifSummary, AgreesWithRealPhotographs) {
    const std::string photos = test_support::real_photos();
    std::ifstream table(photos + "/expected-exif.tsv");
    std::string names, values;
    const auto packed = [](std::string s) { return std::erase(s, ' '), std::erase(s, '\0'), s; };  // texts are padded
    const std::string odd = "damaged/exif-wrong-format.jpg damaged/exif-gray-cve-2012-2814.jpg";   // bad types, no NUL
    size_t accepted = 0;
    for (std::getline(table, names); std::getline(table, values);) {
        row_t row;
        std::istringstream columns(names), cells(values);
        for (std::string column; std::getline(columns, column, '\t');) {
            std::getline(cells, row[column], '\t');
        }
        std::ostringstream text;
        if (!taloram::writeexif(text, "", photos, row["file"], false)) {
            std::cout << "refused: " << row["file"] << '\n';
        } else if (++accepted; odd.find(row["file"]) == std::string::npos) {
            EXPECT_EQ(packed(text.str()), packed(expected_summary(row))) << row["file"];
        }
    }
    EXPECT_GE(accepted, photos.empty() ? 0U : 72U);
}

}  // namespace
