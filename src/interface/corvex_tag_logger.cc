#include "interface/corvex_tag_logger.h"

#include "platform/linux_log_sink.h"

namespace Vantis::Location {

CorvexTagLogger& CorvexTagLogger::getInstance() {
  static CorvexTagLogger instance;
  return instance;
}

bool CorvexTagLogger::isLoggable(Level level) const {
  return PlatformLogIsLoggable(kDomain, kTag, level);
}

void CorvexTagLogger::print(int level, std::string const& message) {
  PlatformLogPrint(kLogType, level, kDomain, kTag, kFormat, message.c_str());
}

void CorvexTagLogger::debug(std::string const& message) { print(kDebug, message); }
void CorvexTagLogger::info(std::string const& message) { print(kInfo, message); }
void CorvexTagLogger::warn(std::string const& message) { print(kWarn, message); }
void CorvexTagLogger::error(std::string const& message) { print(kError, message); }

}  // namespace Vantis::Location
