#include "shooting_data/exif_summary.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <list>
#include <sstream>
#include <string_view>

#include "libgr/exif/app1_marker.h"
#include "libgr/jpeg/jpegdata.h"
#include "libgr/jpeg/jpeginfo.h"
#include "libgr/markers/jpeginfo2.h"
#include "libutils/text.h"
#include "settings/message.h"
#include "shooting_data/exif_labels.h"
#include "talolib/option.h"

namespace taloram {

namespace {

using libgr::tiff_header_t;
using libgr::ExifType::rational_t;
using libgr::ExifType::shorts_t;
using libgr::ExifType::srational_t;
using libgr::ExifType::tag_exif_ifd;

enum class maker_t { none, om_digital, olympus, sony, ricoh, nikon, canon };

struct maker_name_t {
    const char* start;  // of IFD0 Make, in any case
    maker_t maker;
};
constexpr maker_name_t maker_names[] = {
    {"OM Digital", maker_t::om_digital}, {"OLYMPUS", maker_t::olympus}, {"Sony", maker_t::sony},
    {"RICOH", maker_t::ricoh},           {"Nikon", maker_t::nikon},     {"Canon", maker_t::canon},
};

maker_t maker_of(const std::string& make) {
    for (const maker_name_t& name : maker_names) {
        if (libutils::begins_with_nocase(make, name.start)) {
            return name.maker;
        }
    }
    return maker_t::none;
}

constexpr uint16_t iso_in_other_tag = 65535;  // ISOSpeedRatings can't hold more

// Flash (0x9209).
constexpr unsigned flash_fired = 0x01;
constexpr unsigned flash_return = 0x06;
constexpr unsigned flash_return_detected = 0x06;
constexpr unsigned flash_return_missing = 0x04;
constexpr unsigned flash_mode = 0x18;
constexpr unsigned flash_mode_auto = 0x18;
constexpr unsigned flash_no_function = 0x20;
constexpr unsigned flash_red_eye = 0x40;

template <typename Labels>
const char* label_of(const Labels& labels, size_t value, const char* other) {
    return value < labels.size() ? labels[value] : other;
}

double quotient(const rational_t& value) {
    return static_cast<double>(value.numerator) / value.denominator;
}

// The fraction that a tag holds; null when there is none or it has no value.
template <typename Rational>
const Rational* fraction(const std::vector<Rational>& values) {
    return values.empty() || values.front().denominator == 0 ? nullptr : &values.front();
}

int decimal_digits(uint32_t value) {
    int digits = 1;
    while (value >= 10) {
        value /= 10;
        ++digits;
    }
    return digits;
}

// Writes the items of one photograph's summary, each by its own function; an item whose tag is missing leaves nothing.
class summary_writer_t {
  public:
    summary_writer_t(std::ostream& os, const tiff_header_t& tiff, bool html)
        : os_(os),
          tiff_(tiff),
          exif_(tiff.tag_exif_ifd),
          html_(html),
          maker_(maker_of(tiff.tag_0th_ifd.make)),
          notes_(maker_ == maker_t::olympus && tiff.has_olympus3_layout ? maker_t::om_digital : maker_) {}

    void write() {
        camera();
        lens();
        new_line();
        focal_length();
        f_number();
        exposure_time();
        metering();
        exposure_bias();
        new_line();
        exposure_program();
        focus();
        iso();
        flash();
        new_line();
        picture_settings();
        color_space();
        live_composite();
    }

  private:
    void new_line() { os_ << '\t' << line_break(); }
    [[nodiscard]] const char* line_break() const { return html_ ? "<br>" : ""; }

    void camera() {
        if (!tiff_.tag_0th_ifd.model.empty()) {
            std::string make = tiff_.tag_0th_ifd.make;
            std::string model = tiff_.tag_0th_ifd.model;
            libutils::chop2(make);
            libutils::chop2(model);
            os_ << '\t' << make << ", " << model << '\n';
        }
    }

    void lens() {
        if (!exif_.lens_model.empty()) {
            os_ << line_break() << '\t' << exif_.lens_model << '\n';
        }
    }

    void focal_length() {
        if (const rational_t* length = fraction(exif_.focal_length)) {
            os_ << "f=";
            if (length->denominator == 1) {
                os_ << length->numerator;
            } else {
                os_ << quotient(*length);
            }
            os_ << "mm";
        }
        if (!exif_.focal_length_in_35mm_film.empty()) {
            os_ << '(' << exif_.focal_length_in_35mm_film.front() << "mm)";
        }
    }

    // Fixed notation without decimals stays set on the stream.
    void f_number() {
        if (const rational_t* number = fraction(exif_.f_number)) {
            os_ << ", f/" << std::fixed << std::setprecision(1) << quotient(*number);
            os_ << std::setprecision(0) << std::dec;
        }
    }

    void exposure_time() {
        const rational_t* time = fraction(exif_.exposure_time);
        if (time == nullptr) {
            return;
        }
        const uint32_t divisor = gcd(time->numerator, time->denominator);
        const rational_t reduced{time->numerator / divisor, time->denominator / divisor};
        os_ << ", ";
        if (reduced.denominator == 1) {
            os_ << reduced.numerator;
        } else if (reduced.numerator == 1) {
            os_ << "1/" << reduced.denominator;
        } else {
            os_ << std::setprecision(decimal_digits(reduced.denominator)) << quotient(reduced) << std::setprecision(0);
        }
        os_ << "sec";
    }

    void metering() {
        if (!exif_.metering_mode.empty()) {
            const uint16_t mode = exif_.metering_mode.front();
            talolib::trace(std::cout, "metering mode: ", mode);
            os_ << ", " << (mode < meteringmode.size() ? meteringmode[mode] : "[Unk]");
        }
    }

    void exposure_bias() {
        const srational_t* bias = fraction(exif_.exposure_bias_value);
        if (bias == nullptr || bias->numerator == 0) {
            return;
        }
        const int64_t numerator = bias->numerator;  // 64 bits: the smallest 32-bit number has no absolute value
        const int64_t denominator = bias->denominator;
        const int64_t divisor =
            gcd(static_cast<uint32_t>(std::abs(numerator)), static_cast<uint32_t>(std::abs(denominator)));
        os_ << (numerator < 0 ? ", " : ", +") << numerator / divisor;
        if (denominator / divisor != 1) {
            os_ << '/' << denominator / divisor;
        }
        os_ << " EV";
    }

    void exposure_program() {
        if (!exif_.exposure_program.empty()) {
            const std::string_view programs = expprogs;
            const size_t program = exif_.exposure_program.front();
            os_ << (program < programs.size() ? programs[program] : 'U');
        }
    }

    void focus() {
        switch (notes_) {
            case maker_t::ricoh:
                ricoh_focus();
                break;
            case maker_t::olympus:
                olympus_focus();
                break;
            case maker_t::om_digital:
                om_digital_focus();
                break;
            default:
                break;
        }
    }

    void ricoh_focus() {
        const auto& note = tiff_.tag_pentax5_ifd;
        if (!note.focus_mode.empty()) {
            os_ << ", " << search_desc(pex5focusmode, note.focus_mode.front());
            focus_position(note.focus_position);
        }
    }

    void olympus_focus() {
        const auto& note = tiff_.tag_olympus_ifd;
        if (!note.focus_mode.empty()) {
            const uint16_t mode = note.focus_mode.front();
            os_ << ", " << label_of(focusmode, mode, "U");
            const rational_t* distance = fraction(note.focus_distance);
            if (mode == 1 && distance != nullptr) {
                os_ << "(P=" << distance->numerator / distance->denominator << ')';
            }
        }
    }

    void om_digital_focus() {
        const auto& note = tiff_.tag_olympus3_focusinfo_ifd;
        if (!note.auto_focus.empty()) {
            os_ << ", " << (note.auto_focus.front() != 0 ? focusmode[0] : focusmode[1]);
            focus_position(note.focus_step_count);
        }
    }

    void focus_position(const shorts_t& position) {
        if (!position.empty()) {
            os_ << "(P=" << position.front() << ')';
        }
    }

    void iso() {
        if (!exif_.iso_speed_ratings.empty()) {
            const uint16_t speed = exif_.iso_speed_ratings.front();
            const bool other = speed == iso_in_other_tag && !exif_.standard_output_sensitivity.empty();
            os_ << ", iso" << (other ? exif_.standard_output_sensitivity.front() : speed);
        }
    }

    void flash() {
        const unsigned state = exif_.flash.empty() ? 0U : exif_.flash.front();
        if ((state & flash_fired) == 0) {
            return;
        }
        os_ << ", Flash";
        if ((state & flash_return) == flash_return_detected) {
            os_ << ", Return Detected";
        } else if ((state & flash_return) == flash_return_missing) {
            os_ << ", Return Not Detected";
        }
        if ((state & flash_mode) == flash_mode_auto) {
            os_ << ", Auto";
        } else if ((state & flash_mode) != 0) {
            os_ << ", Compulsory";
        }
        if ((state & flash_no_function) != 0) {
            os_ << ", No Flash Function";
        }
        if ((state & flash_red_eye) != 0) {
            os_ << ", Red-Eye Reduce";
        }
    }

    void picture_settings() {
        if (notes_ == maker_t::olympus) {
            olympus_picture_settings();
            return;
        }
        if (notes_ == maker_t::om_digital) {
            const auto& balance = tiff_.tag_olympus3_camerasettings_ifd.white_balance2;
            if (!balance.empty()) {
                os_ << search_desc(olym3whitebal, balance.front());
            }
        } else {
            setting("", exif_.white_balance, whitebal, "Unknown WB");
        }
        setting(", Shp ", exif_.sharpness, processrange, "Unknown");
        setting(", Sat ", exif_.saturation, saturation, "Unknown");
        setting(", Cst ", exif_.contrast, processrange, "Unknown");
    }

    void olympus_picture_settings() {
        const auto& note = tiff_.tag_olympus_ifd;
        const shorts_t& balance = note.white_balance;
        setting("", balance, whitebalance_code, "");
        if (balance.size() > 1 && balance[0] == 2) {
            os_ << label_of(whitebalance_preset, balance[1], "");
        }
        os_ << ", ";
        setting("", note.sharpness, sharpness, "Unknown");
        os_ << ", ";
        setting("", note.contrast, olympus_contrast, "Unknown");
    }

    template <typename Labels>
    void setting(const char* name, const shorts_t& values, const Labels& labels, const char* other) {
        if (!values.empty()) {
            os_ << name << label_of(labels, values.front(), other);
        }
    }

    void color_space() {
        os_ << ", ";
        if (!exif_.color_space.empty()) {
            os_ << search_desc(colorspace, exif_.color_space.front());
        }
    }

    void live_composite() {
        const auto& stacked = tiff_.tag_olympus3_camerasettings_ifd.stacked_image;
        if (maker_ != maker_t::om_digital || stacked.empty() || stacked.front() != 1) {
            return;
        }
        os_ << '\t' << line_break() << "LiveComp ";
        if (stacked.size() > 1) {
            os_ << stacked[1];
        }
        os_ << " frames";
    }

    std::ostream& os_;
    const tiff_header_t& tiff_;
    const tag_exif_ifd& exif_;
    bool html_;
    maker_t maker_;
    maker_t notes_;  // whose maker-note values are shown: newer Olympus cameras write those of OM Digital
};

bool read_exif(libgr::app1_marker_t& app1, const std::string& path) {
    libgr::jpegdata2_t data;
    if (!data.load(path.c_str())) {
        return false;
    }
    libgr::jpeginfo2_t info(path.c_str());
    if (!info.analyze(data)) {
        return false;
    }
    const libutils::bytes_t segment = info.get_marker(libgr::marker_APP1);
    if (segment.empty()) {
        return false;
    }
    talolib::trace(std::cout, "new app1_marker_t complete.");
    app1.set_app1_buffer(segment);
    talolib::trace(std::cout, "set_app1_buffer() complete.");
    if (!app1.parse()) {
        return false;
    }
    talolib::trace(std::cout, "app1->parse() complete.");
    return true;
}

}  // namespace

unsigned int gcd(unsigned int a, unsigned int b) {
    return b == 0 ? a : gcd(b, a % b);
}

void initexif(const char* /*dir*/, const char* /*name*/) {
    meteringmode[2] = getmsg(msg_metering_average);
    meteringmode[3] = getmsg(msg_metering_spot);
}

bool writeexif(std::ostream& os, const std::string& dir, const std::string& sub, const std::string& file, bool html) {
    libgr::app1_marker_t app1;
    if (!read_exif(app1, (dir.empty() ? "" : dir + "/") + sub + "/" + file)) {
        return false;
    }
    const libutils::classic_numbers classic(os);
    summary_writer_t(os, app1.tiff_header, html).write();
    return true;
}

std::string plain_summary(const std::string& dir, const std::string& sub, const std::string& file) {
    std::ostringstream out;
    static_cast<void>(writeexif(out, dir, sub, file, false));
    std::list<std::string> lines;
    libutils::separate_token(lines, out.str(), "\n");
    std::list<std::string> shown;
    for (std::string& line : lines) {
        libutils::chop2(line);
        // An item that is missing leaves the comma behind it.
        line.erase(0, std::min(line.find_first_not_of("\t ,"), line.size()));
        std::replace(line.begin(), line.end(), '\t', ' ');
        if (!line.empty()) {
            shown.push_back(line);
        }
    }
    std::string text;
    libutils::concatenate_token(text, shown, "\n");
    return text;
}

}  // namespace taloram
