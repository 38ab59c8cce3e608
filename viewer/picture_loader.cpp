#include "viewer/picture_loader.h"

#include <algorithm>
#include <utility>

namespace talovue {

picture_loader_t::picture_loader_t() : thread_([this] { work(); }) {
}

picture_loader_t::~picture_loader_t() {
    {
        const std::lock_guard guard(lock_);
        stop_ = true;
    }
    wake_.notify_one();
    thread_.join();
}

void picture_loader_t::request(std::vector<picture_request_t> wanted) {
    {
        const std::lock_guard guard(lock_);
        std::erase_if(wanted, [this](const picture_request_t& request) {
            return std::find(at_work_.begin(), at_work_.end(), request) != at_work_.end() ||
                   std::any_of(finished_.begin(), finished_.end(),
                               [&request](const result_t& result) { return result.request == request; });
        });
        waiting_.assign(std::make_move_iterator(wanted.begin()), std::make_move_iterator(wanted.end()));
    }
    wake_.notify_one();
}

bool picture_loader_t::take(result_t& result) {
    const std::lock_guard guard(lock_);
    if (finished_.empty()) {
        return false;
    }
    result = std::move(finished_.front());
    finished_.pop_front();
    return true;
}

void picture_loader_t::work() {
    std::unique_lock guard(lock_);
    for (;;) {
        wake_.wait(guard, [this] { return stop_ || !waiting_.empty(); });
        if (stop_) {
            return;
        }
        at_work_ = {std::move(waiting_.front())};
        waiting_.pop_front();
        guard.unlock();
        result_t result{at_work_.front(), {}};
        result.picture = load_picture(result.request);
        guard.lock();
        at_work_.clear();
        finished_.push_back(std::move(result));
        loaded_.emit();
    }
}

}  // namespace talovue
