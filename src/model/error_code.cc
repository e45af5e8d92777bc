#include "model/error_code.h"

#include <utility>

namespace Vantis::Location {

const ErrorCode ErrorCode::SUCCESS(0, "Success");
const ErrorCode ErrorCode::INPUT_INFO_EMPTY(500010, "Input info is empty");
const ErrorCode ErrorCode::INPUT_INFO_OVER_LIMIT(500020,
                                                 "The number of input info exceeds the limit");
const ErrorCode ErrorCode::RSSI_OVER_LIMIT(
    500030, "One of the RSSI exceeds the limit(should be -127 <= RSSI <= 0)");
const ErrorCode ErrorCode::FILTERED_ALL_INFOS(
    500050, "All infos is filtered, resulting in no info being able to give location");
const ErrorCode ErrorCode::ALGORITHM_RUNNING_FAILED(
    500060,
    "The localization algorithm failed to run, usually because the number of iterations "
    "exceeded the upper limit");
const ErrorCode ErrorCode::CONFIDENCE_ERROR(500070,
                                            "Confidence error (All of confidences may be 0)");
const ErrorCode ErrorCode::LOG_FUN_ERROR(500080, "The LogFunc is null");
const ErrorCode ErrorCode::TAG_IS_MOVED(500090, "Tag is moved");
const ErrorCode ErrorCode::UNKNOWN_ERROR(-1, "Unknown error");

ErrorCode::ErrorCode(int code, std::string msg) : code_(code), msg_(std::move(msg)) {}

std::string ErrorCode::toString() const {
  return "{\"errorCode\":" + std::to_string(code_) + ",\"errorMsg\":\"" + msg_ + "\"}";
}

}  // namespace Vantis::Location
