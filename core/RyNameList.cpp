// Views of arrays of names.
#include <RynCommon/RyName.h>

namespace RynCommon {

RyNameList::RyNameList(const RyNameEnum* array, int count)
    : array_(array), count_(array != nullptr ? count : 0) {}

RyNameList::RyNameList(const RyNameEnum* array) : array_(array) {
    if (array == nullptr) return;
    while (array[count_] != RN_EMPTY) ++count_;
}

RyName RyNameList::getItem(int index) const {
    return index >= 0 && index < count_ ? RyName(array_[index]) : RyName();
}

int RyNameList::indexOf(RyName name) const {
    for (int i = 0; i < count_; ++i) {
        if (name == array_[i]) return i;
    }
    return -1;
}

}  // namespace RynCommon
