#ifndef CORVEX_MODEL_ERROR_CODE_H_
#define CORVEX_MODEL_ERROR_CODE_H_

#include <string>

namespace Vantis::Location {

// Outcome of one position computation: a numeric code for the caller and a readable message.
// The static constants are the only values the library produces.
class ErrorCode {
 public:
  static const ErrorCode SUCCESS;
  static const ErrorCode INPUT_INFO_EMPTY;
  static const ErrorCode INPUT_INFO_OVER_LIMIT;
  static const ErrorCode RSSI_OVER_LIMIT;
  static const ErrorCode FILTERED_ALL_INFOS;
  static const ErrorCode ALGORITHM_RUNNING_FAILED;
  static const ErrorCode CONFIDENCE_ERROR;
  static const ErrorCode LOG_FUN_ERROR;
  static const ErrorCode TAG_IS_MOVED;
  static const ErrorCode UNKNOWN_ERROR;

  ErrorCode(int code, std::string msg);

  int getErrorCode() const { return code_; }
  std::string getErrorMsg() const { return msg_; }

  // {"errorCode":<code>,"errorMsg":"<msg>"}, unescaped.
  std::string toString() const;

  // The code alone identifies an error; the message is informative.
  bool operator==(ErrorCode const& other) const { return code_ == other.code_; }
  bool operator!=(ErrorCode const& other) const { return !(*this == other); }

 private:
  int code_;
  std::string msg_;
};

}  // namespace Vantis::Location

#endif  // CORVEX_MODEL_ERROR_CODE_H_
