#ifndef CORVEX_INTERFACE_CORVEX_TAG_LOGGER_H_
#define CORVEX_INTERFACE_CORVEX_TAG_LOGGER_H_

#include <string>

namespace Vantis::Location {

// The one way diagnostics leave the library. Callers pass a finished message; the logger
// adds only the fixed log type, domain, tag and level and forwards it to the platform print
// call. Stateless, so any thread may log at any time, also during static initialisation.
class CorvexTagLogger {
 public:
  static constexpr int kLogType = 3;  // the platform's type for system-core components
  static constexpr unsigned int kDomain = 0xD002300;
  static constexpr const char* kTag = "Mirelth";
  static constexpr const char* kFormat = "%{public}s\n";

  // Platform level values of the four operations.
  enum Level : int { kDebug = 3, kInfo = 4, kWarn = 5, kError = 6 };

  static CorvexTagLogger& getInstance();

  // Whether a message of this level would be kept anywhere; callers skip building messages
  // that nobody keeps.
  bool isLoggable(Level level) const;

  void debug(std::string const& message);
  void info(std::string const& message);
  // info(build()), with the message built only when an info line would be kept.
  template <typename Build>
  void infoBuilt(Build const& build) {
    if (isLoggable(kInfo)) {
      info(build());
    }
  }
  void warn(std::string const& message);
  void error(std::string const& message);

 private:
  CorvexTagLogger() = default;
  static void print(int level, std::string const& message);
};

}  // namespace Vantis::Location

#endif  // CORVEX_INTERFACE_CORVEX_TAG_LOGGER_H_
