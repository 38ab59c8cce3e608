#include "messages/message.h"

namespace taloram {

const char* getmsg(e_message_local_t id) {
    return talolib::getmsg(id);
}

}  // namespace taloram
