#include "interface/corvex_tag_logger.h"

#include "platform/linux_log_sink.h"

namespace Vantis::Location {

CorvexTagLogger& CorvexTagLogger::getInstance() {
  static CorvexTagLogger instance;
  return instance;
}

void CorvexTagLogger::print(int level, std::string const& message) {
  PlatformLogPrint(kLogType, level, kDomain, kTag, kFormat, message.c_str());
}

void CorvexTagLogger::debug(std::string const& message) { print(kPlatformLogDebug, message); }
void CorvexTagLogger::info(std::string const& message) { print(kPlatformLogInfo, message); }
void CorvexTagLogger::warn(std::string const& message) { print(kPlatformLogWarn, message); }
void CorvexTagLogger::error(std::string const& message) { print(kPlatformLogError, message); }

}  // namespace Vantis::Location
