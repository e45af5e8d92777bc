#ifndef CORVEX_SOLVER_COUNTER_H_
#define CORVEX_SOLVER_COUNTER_H_

namespace Vantis::Location {

// Counts events against a limit; keeps counting after the limit is reached.
class Counter {
 public:
  explicit Counter(int maximum) : maximum_(maximum) {}

  // Counts one event; true when the limit had already been reached before this one.
  bool countPlus();
  int getCount() const { return count_; }

 private:
  int maximum_;
  int count_ = 0;
};

}  // namespace Vantis::Location

#endif  // CORVEX_SOLVER_COUNTER_H_
