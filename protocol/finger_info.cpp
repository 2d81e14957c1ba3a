#include "protocol/finger_info.h"

#include <algorithm>
#include <iterator>

namespace {

template<typename Predicate>
const finger_info_ts *findFirst(Predicate fits)
{
    const auto *row = std::find_if(std::begin(finger_infos), std::end(finger_infos), fits);
    return row == std::end(finger_infos) ? nullptr : row;
}

} // namespace

const finger_info_ts *findFingerInfoByPrg(uint8_t prg)
{
    return findFirst([prg](const finger_info_ts &row) { return row.prg == prg; });
}

const finger_info_ts *findFingerInfoByPackLen(int packLen)
{
    return findFirst([packLen](const finger_info_ts &row) { return row.packLen == packLen; });
}
