#include "widgets/comment_fields.h"

#include <initializer_list>

#include "toolkit/text_encoding.h"
#include "widgets/single_line.h"

namespace taloram {

namespace {

enum field_t : size_t { title_field, head_field, last_field, field_count };

}  // namespace

Gtk::Label& caption(e_message_local_t text, Gtk::Widget& target, std::string& taken) {
    auto* label = Gtk::manage(new Gtk::Label(mnemonic_text(text, taken), true));
    label->set_xalign(0);
    label->set_mnemonic_widget(target);
    return *label;
}

comment_fields_t::comment_fields_t() {
    title.set_activates_default(true);
    keep_on_one_line(title);
    title.get_accessible()->set_name(message_text(msg_title));
    head.get_accessible()->set_name(message_text(msg_head_comment));
    last.get_accessible()->set_name(message_text(msg_last_comment));
}

void comment_fields_t::show(const comment_texts_t& texts) {
    const drafts_t kept = drafts();
    load(title_field, texts.title);
    load(head_field, texts.head);
    load(last_field, texts.last);
    restore(kept);
}

void comment_fields_t::show_comments_of(const std::string& directory) {
    show(load(directory));
}

void comment_fields_t::fill_comments_of(const std::string& directory) {
    const comment_texts_t texts = load(directory);
    show({});
    fill(texts);
}

comment_texts_t comment_fields_t::load(const std::string& directory) {
    comment_texts_t texts;
    unread_.clear();
    if (const unread_text_t unread = load_comments(texts, directory)) {
        report_unread(unread);
        unread_ = to_toolkit(unread.path + ": " + unread.reason.message());
    }
    const Glib::ustring notice = unread_.empty() ? "" : message_text(msg_text_unreadable) + " " + unread_;
    title.set_placeholder_text(notice);
    title.set_tooltip_text(notice);
    for (Gtk::Widget* field : std::initializer_list<Gtk::Widget*>{&title, &head, &last}) {
        field->set_sensitive(unread_.empty());
    }
    return texts;
}

void comment_fields_t::fill(const comment_texts_t& texts) {
    const std::array<const std::string*, field_count> values = {&texts.title, &texts.head, &texts.last};
    for (size_t field = 0; field < field_count; ++field) {
        if (!values[field]->empty()) {
            load(field, *values[field]);
        }
    }
}

comment_texts_t comment_fields_t::texts() const {
    std::array<std::string, field_count> values;
    for (size_t field = 0; field < field_count; ++field) {
        values[field] = loaded_[field].bytes(typed(field));
    }
    return {values[title_field], values[head_field], values[last_field]};
}

void comment_fields_t::accept() {
    const comment_texts_t now = texts();
    load(title_field, now.title);
    load(head_field, now.head);
    load(last_field, now.last);
}

comment_fields_t::drafts_t comment_fields_t::drafts() const {
    drafts_t drafts;
    for (size_t field = 0; field < field_count; ++field) {
        const Glib::ustring text = typed(field);
        if (!loaded_[field].is_left_alone(text)) {
            drafts[field] = text;
        }
    }
    return drafts;
}

void comment_fields_t::restore(const drafts_t& drafts) {
    for (size_t field = 0; field < field_count; ++field) {
        if (drafts[field]) {
            type(field, *drafts[field]);
        }
    }
}

Glib::ustring comment_fields_t::typed(size_t field) const {
    return field == title_field ? title.get_text() : (field == head_field ? head : last).get_buffer()->get_text(true);
}

void comment_fields_t::type(size_t field, const Glib::ustring& text) {
    if (field == title_field) {
        title.set_text(text);
    } else {
        (field == head_field ? head : last).get_buffer()->set_text(text);
    }
}

void comment_fields_t::load(size_t field, const std::string& text) {
    type(field, loaded_[field].keep(text));
}

}  // namespace taloram
