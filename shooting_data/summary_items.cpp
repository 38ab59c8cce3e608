#include "shooting_data/summary_items.h"

#include <cstdint>
#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <locale>
#include <sstream>
#include <string_view>
#include <utility>

#include "libgr/exif/makers.h"
#include "libutils/text/text.h"
#include "shooting_data/exif_labels.h"
#include "talolib/option.h"

namespace taloram {

namespace {

using libgr::label_of;
using libgr::maker_t;
using libgr::tiff_header_t;
using libgr::ExifType::rational_t;
using libgr::ExifType::shorts_t;
using libgr::ExifType::srational_t;
using libgr::ExifType::tag_exif_ifd;

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

// Collects the items of one photograph, each kind by its own function.
class collector_t {
  public:
    collector_t(const tiff_header_t& tiff, std::ios_base& format)
        : tiff_(tiff), exif_(tiff.tag_exif_ifd), maker_(libgr::find_maker(tiff)), format_(format) {
        number_.imbue(std::locale::classic());
    }

    std::vector<summary_item_t> collect() {
        camera();
        focal_length();
        f_number();
        exposure_time();
        metering();
        exposure_bias();
        exposure_program();
        focus();
        iso();
        flash();
        white_balance();
        rendering();
        after_comma(summary_item_t::picture,
                    exif_.color_space.empty() ? "" : search_desc(colorspace, exif_.color_space.front()));
        stacking();
        return std::move(items_);
    }

  private:
    void plain(summary_item_t::line_t line, std::string text) { items_.push_back({line, std::move(text)}); }
    void after_comma(summary_item_t::line_t line, std::string text) { items_.push_back({line, std::move(text), true}); }

    // A number with a point, in the notation that is set.
    std::string decimal(double value, std::streamsize precision) {
        number_.str("");
        number_.flags(format_.flags());
        number_.precision(precision);
        number_ << value;
        return number_.str();
    }

    void camera() {
        if (!tiff_.tag_0th_ifd.model.empty()) {
            std::string make = tiff_.tag_0th_ifd.make;
            std::string model = tiff_.tag_0th_ifd.model;
            libutils::chop2(make);
            libutils::chop2(model);
            plain(summary_item_t::camera, make + ", " + model);
        }
        if (!exif_.lens_model.empty()) {
            plain(summary_item_t::lens, exif_.lens_model);
        }
    }

    void focal_length() {
        if (const rational_t* length = fraction(exif_.focal_length)) {
            plain(summary_item_t::exposure,
                  "f=" +
                      (length->denominator == 1 ? std::to_string(length->numerator)
                                                : decimal(quotient(*length), format_.precision())) +
                      "mm");
        }
        if (!exif_.focal_length_in_35mm_film.empty()) {
            plain(summary_item_t::exposure, "(" + std::to_string(exif_.focal_length_in_35mm_film.front()) + "mm)");
        }
    }

    // Fixed notation without decimals stays set.
    void f_number() {
        if (const rational_t* number = fraction(exif_.f_number)) {
            format_.setf(std::ios_base::fixed, std::ios_base::floatfield);
            format_.setf(std::ios_base::dec, std::ios_base::basefield);
            after_comma(summary_item_t::exposure, "f/" + decimal(quotient(*number), 1));
            format_.precision(0);
        }
    }

    void exposure_time() {
        const rational_t* time = fraction(exif_.exposure_time);
        if (time == nullptr) {
            return;
        }
        const uint32_t divisor = gcd(time->numerator, time->denominator);
        const rational_t reduced{time->numerator / divisor, time->denominator / divisor};
        std::string text;
        if (reduced.denominator == 1) {
            text = std::to_string(reduced.numerator);
        } else if (reduced.numerator == 1) {
            text = "1/" + std::to_string(reduced.denominator);
        } else {
            text = decimal(quotient(reduced), decimal_digits(reduced.denominator));
            format_.precision(0);
        }
        after_comma(summary_item_t::exposure, text + "sec");
    }

    void metering() {
        if (!exif_.metering_mode.empty()) {
            const uint16_t mode = exif_.metering_mode.front();
            talolib::trace(std::cout, "metering mode: ", mode);
            after_comma(summary_item_t::exposure, mode < meteringmode.size() ? meteringmode[mode] : "[Unk]");
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
        std::string text = (numerator < 0 ? "" : "+") + std::to_string(numerator / divisor);
        if (denominator / divisor != 1) {
            text += "/" + std::to_string(denominator / divisor);
        }
        after_comma(summary_item_t::exposure, text + " EV");
    }

    void exposure_program() {
        if (!exif_.exposure_program.empty()) {
            const std::string_view programs = expprogs;
            const size_t program = exif_.exposure_program.front();
            plain(summary_item_t::shooting, std::string(1, program < programs.size() ? programs[program] : 'U'));
        }
    }

    void focus() {
        const std::string text = maker_ != nullptr && maker_->focus != nullptr ? maker_->focus(tiff_) : "";
        if (!text.empty()) {
            after_comma(summary_item_t::shooting, text);
        }
    }

    void iso() {
        if (!exif_.iso_speed_ratings.empty()) {
            const uint16_t speed = exif_.iso_speed_ratings.front();
            const bool other = speed == iso_in_other_tag && !exif_.standard_output_sensitivity.empty();
            after_comma(summary_item_t::shooting,
                        "iso" + std::to_string(other ? exif_.standard_output_sensitivity.front() : speed));
        }
    }

    void flash() {
        const unsigned state = exif_.flash.empty() ? 0U : exif_.flash.front();
        if ((state & flash_fired) == 0) {
            return;
        }
        const auto add = [this](const char* text) { after_comma(summary_item_t::shooting, text); };
        add("Flash");
        if ((state & flash_return) == flash_return_detected) {
            add("Return Detected");
        } else if ((state & flash_return) == flash_return_missing) {
            add("Return Not Detected");
        }
        if ((state & flash_mode) == flash_mode_auto) {
            add("Auto");
        } else if ((state & flash_mode) != 0) {
            add("Compulsory");
        }
        if ((state & flash_no_function) != 0) {
            add("No Flash Function");
        }
        if ((state & flash_red_eye) != 0) {
            add("Red-Eye Reduce");
        }
    }

    void white_balance() {
        const shorts_t& balance = exif_.white_balance;
        if (maker_ != nullptr && maker_->white_balance != nullptr) {
            plain(summary_item_t::picture, maker_->white_balance(tiff_));
        } else if (!balance.empty()) {
            plain(summary_item_t::picture, label_of(whitebal, balance.front(), "Unknown WB"));
        }
    }

    void rendering() {
        if (maker_ != nullptr && maker_->rendering != nullptr) {
            for (const std::string& text : maker_->rendering(tiff_)) {
                after_comma(summary_item_t::picture, text);
            }
            return;
        }
        setting("Shp ", exif_.sharpness, processrange);
        setting("Sat ", exif_.saturation, saturation);
        setting("Cst ", exif_.contrast, processrange);
    }

    template <typename Labels>
    void setting(const char* name, const shorts_t& values, const Labels& labels) {
        if (!values.empty()) {
            after_comma(summary_item_t::picture, std::string(name) + label_of(labels, values.front(), "Unknown"));
        }
    }

    void stacking() {
        const std::string text = maker_ != nullptr && maker_->stacking != nullptr ? maker_->stacking(tiff_) : "";
        if (!text.empty()) {
            plain(summary_item_t::stacking, text);
        }
    }

    const tiff_header_t& tiff_;
    const tag_exif_ifd& exif_;
    const maker_t* maker_;
    std::ios_base& format_;
    std::ostringstream number_;  // for all of them: making a stream takes longer than writing a number
    std::vector<summary_item_t> items_;
};

}  // namespace

unsigned int gcd(unsigned int a, unsigned int b) {
    return b == 0 ? a : gcd(b, a % b);
}

std::vector<summary_item_t> summary_items(const tiff_header_t& tiff, std::ios_base& format) {
    return collector_t(tiff, format).collect();
}

}  // namespace taloram
