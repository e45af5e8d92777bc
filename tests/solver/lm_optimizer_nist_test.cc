// Fits the NIST StRD nonlinear regression problems (tests/solver/nist_strd) and checks the
// optimizer against their certified parameter values.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <memory>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "solver/constriction_inspector.h"
#include "solver/estimation.h"
#include "solver/lm_optimizer.h"
#include "solver/ls_problem.h"
#include "solver/value_and_jacobian_function.h"
#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using Vector = std::vector<double>;
using Matrix = std::vector<Vector>;

// Model value at the predictors x for the parameters b; fills d value / d b.
using Model = double (*)(Vector const& x, Vector const& b, Vector& gradient);

constexpr double kPi = 3.14159265358979323846;
constexpr double kMaxLre = 11.0;  // the certified values carry 11 significant digits
constexpr double kPassLre = 4.0;
constexpr int kLimit = 1000;

struct NistData {
  Matrix x;  // predictors, one row per observation
  Vector y;
  Vector start1;
  Vector start2;
  Vector certified;
};

NistData readNist(std::string const& file) {
  std::ifstream in(std::string(CORVEX_SOURCE_DIR) + "/tests/solver/nist_strd/" + file);
  NistData data;
  std::regex const parameterLine(R"(^\s*b\d+\s*=\s*(\S+)\s+(\S+)\s+(\S+)\s+\S+\s*$)");
  std::string line;
  for (int number = 1; std::getline(in, line); ++number) {
    line.erase(std::remove(line.begin(), line.end(), '\r'), line.end());
    std::smatch match;
    if (number < 60 && std::regex_match(line, match, parameterLine)) {
      data.start1.push_back(std::stod(match[1]));
      data.start2.push_back(std::stod(match[2]));
      data.certified.push_back(std::stod(match[3]));
    } else if (number > 60) {
      std::istringstream fields(line);
      double value = 0.0;
      Vector row;
      while (fields >> value) {
        row.push_back(value);
      }
      if (!row.empty()) {
        data.y.push_back(row[0]);
        data.x.emplace_back(row.begin() + 1, row.end());
      }
    }
  }
  return data;
}

class NistFunction : public ValueAndJacobianFunction {
 public:
  NistFunction(Model model, Matrix const& x) : model_(model), x_(x) {}

  ValueAndJacobian calculate(Vector const& b) const override {
    Vector value;
    Matrix jacobian;
    Vector gradient(b.size());
    for (Vector const& x : x_) {
      value.push_back(model_(x, b, gradient));
      jacobian.push_back(gradient);
    }
    return ValueAndJacobian(value, jacobian);
  }

 private:
  Model model_;
  Matrix x_;
};

// --- The models, with analytic gradients. ---

double misra1a(Vector const& x, Vector const& b, Vector& g) {  // also BoxBOD
  double const e = std::exp(-b[1] * x[0]);
  g[0] = 1.0 - e;
  g[1] = b[0] * x[0] * e;
  return b[0] * (1.0 - e);
}

double chwirut(Vector const& x, Vector const& b, Vector& g) {
  double const e = std::exp(-b[0] * x[0]);
  double const u = b[1] + b[2] * x[0];
  g[0] = -x[0] * e / u;
  g[1] = -e / (u * u);
  g[2] = -x[0] * e / (u * u);
  return e / u;
}

double lanczos(Vector const& x, Vector const& b, Vector& g) {
  double value = 0.0;
  for (int k = 0; k < 6; k += 2) {
    double const e = std::exp(-b[k + 1] * x[0]);
    g[k] = e;
    g[k + 1] = -b[k] * x[0] * e;
    value += b[k] * e;
  }
  return value;
}

double gauss(Vector const& x, Vector const& b, Vector& g) {
  double const e = std::exp(-b[1] * x[0]);
  g[0] = e;
  g[1] = -b[0] * x[0] * e;
  double value = b[0] * e;
  for (int k = 2; k < 8; k += 3) {
    double const d = x[0] - b[k + 1];
    double const w = b[k + 2];
    double const peak = std::exp(-d * d / (w * w));
    g[k] = peak;
    g[k + 1] = b[k] * peak * 2.0 * d / (w * w);
    g[k + 2] = b[k] * peak * 2.0 * d * d / (w * w * w);
    value += b[k] * peak;
  }
  return value;
}

double danWood(Vector const& x, Vector const& b, Vector& g) {
  double const p = std::pow(x[0], b[1]);
  g[0] = p;
  g[1] = b[0] * p * std::log(x[0]);
  return b[0] * p;
}

double misra1b(Vector const& x, Vector const& b, Vector& g) {
  double const u = 1.0 + b[1] * x[0] / 2.0;
  g[0] = 1.0 - 1.0 / (u * u);
  g[1] = b[0] * x[0] / (u * u * u);
  return b[0] * g[0];
}

double misra1c(Vector const& x, Vector const& b, Vector& g) {
  double const u = 1.0 + 2.0 * b[1] * x[0];
  g[0] = 1.0 - 1.0 / std::sqrt(u);
  g[1] = b[0] * x[0] / (u * std::sqrt(u));
  return b[0] * g[0];
}

double misra1d(Vector const& x, Vector const& b, Vector& g) {
  double const u = 1.0 + b[1] * x[0];
  g[0] = b[1] * x[0] / u;
  g[1] = b[0] * x[0] / (u * u);
  return b[0] * g[0];
}

// (b[0] + b[1] x + ... + b[m-1] x^(m-1)) / (1 + b[m] x + ... ), m numerator terms.
double rational(Vector const& x, Vector const& b, Vector& g, int m) {
  int const n = static_cast<int>(b.size());
  double numerator = 0.0;
  double denominator = 1.0;
  double power = 1.0;
  for (int k = 0; k < m; ++k, power *= x[0]) {
    numerator += b[k] * power;
  }
  power = x[0];
  for (int k = m; k < n; ++k, power *= x[0]) {
    denominator += b[k] * power;
  }
  double const value = numerator / denominator;
  power = 1.0;
  for (int k = 0; k < m; ++k, power *= x[0]) {
    g[k] = power / denominator;
  }
  power = x[0];
  for (int k = m; k < n; ++k, power *= x[0]) {
    g[k] = -value * power / denominator;
  }
  return value;
}

double kirby2(Vector const& x, Vector const& b, Vector& g) { return rational(x, b, g, 3); }
double hahn1(Vector const& x, Vector const& b, Vector& g) { return rational(x, b, g, 4); }

double nelson(Vector const& x, Vector const& b, Vector& g) {  // fits log(y)
  double const e = std::exp(-b[2] * x[1]);
  g[0] = 1.0;
  g[1] = -x[0] * e;
  g[2] = b[1] * x[0] * x[1] * e;
  return b[0] - b[1] * x[0] * e;
}

double mgh17(Vector const& x, Vector const& b, Vector& g) {
  double const e4 = std::exp(-x[0] * b[3]);
  double const e5 = std::exp(-x[0] * b[4]);
  g[0] = 1.0;
  g[1] = e4;
  g[2] = e5;
  g[3] = -b[1] * x[0] * e4;
  g[4] = -b[2] * x[0] * e5;
  return b[0] + b[1] * e4 + b[2] * e5;
}

double roszman1(Vector const& x, Vector const& b, Vector& g) {
  double const d = x[0] - b[3];
  double const u = b[2] / d;
  double const datan = 1.0 / (1.0 + u * u) / kPi;
  g[0] = 1.0;
  g[1] = -x[0];
  g[2] = -datan / d;
  g[3] = -datan * b[2] / (d * d);
  return b[0] - b[1] * x[0] - std::atan(u) / kPi;
}

double enso(Vector const& x, Vector const& b, Vector& g) {
  double const year = 2.0 * kPi * x[0] / 12.0;
  g[0] = 1.0;
  g[1] = std::cos(year);
  g[2] = std::sin(year);
  double value = b[0] + b[1] * g[1] + b[2] * g[2];
  for (int k = 3; k < 9; k += 3) {
    double const angle = 2.0 * kPi * x[0] / b[k];
    double const c = std::cos(angle);
    double const s = std::sin(angle);
    g[k] = (-b[k + 1] * s + b[k + 2] * c) * (-angle / b[k]);
    g[k + 1] = c;
    g[k + 2] = s;
    value += b[k + 1] * c + b[k + 2] * s;
  }
  return value;
}

double mgh09(Vector const& x, Vector const& b, Vector& g) {
  double const numerator = x[0] * x[0] + x[0] * b[1];
  double const denominator = x[0] * x[0] + x[0] * b[2] + b[3];
  double const value = b[0] * numerator / denominator;
  g[0] = numerator / denominator;
  g[1] = b[0] * x[0] / denominator;
  g[2] = -value * x[0] / denominator;
  g[3] = -value / denominator;
  return value;
}

double rat42(Vector const& x, Vector const& b, Vector& g) {
  double const e = std::exp(b[1] - b[2] * x[0]);
  double const u = 1.0 + e;
  g[0] = 1.0 / u;
  g[1] = -b[0] * e / (u * u);
  g[2] = b[0] * x[0] * e / (u * u);
  return b[0] / u;
}

double mgh10(Vector const& x, Vector const& b, Vector& g) {
  double const d = x[0] + b[2];
  double const e = std::exp(b[1] / d);
  g[0] = e;
  g[1] = b[0] * e / d;
  g[2] = -b[0] * e * b[1] / (d * d);
  return b[0] * e;
}

double eckerle4(Vector const& x, Vector const& b, Vector& g) {
  double const z = (x[0] - b[2]) / b[1];
  double const peak = std::exp(-0.5 * z * z);
  g[0] = peak / b[1];
  g[1] = b[0] * peak * (z * z - 1.0) / (b[1] * b[1]);
  g[2] = b[0] * peak * z / (b[1] * b[1]);
  return b[0] / b[1] * peak;
}

double rat43(Vector const& x, Vector const& b, Vector& g) {
  double const e = std::exp(b[1] - b[2] * x[0]);
  double const u = 1.0 + e;
  double const p = std::pow(u, -1.0 / b[3]);
  g[0] = p;
  g[1] = -b[0] * p * e / (b[3] * u);
  g[2] = b[0] * p * e * x[0] / (b[3] * u);
  g[3] = b[0] * p * std::log(u) / (b[3] * b[3]);
  return b[0] * p;
}

double bennett5(Vector const& x, Vector const& b, Vector& g) {
  double const u = b[1] + x[0];
  double const p = std::pow(u, -1.0 / b[2]);
  g[0] = p;
  g[1] = -b[0] * p / (b[2] * u);
  g[2] = b[0] * p * std::log(u) / (b[2] * b[2]);
  return b[0] * p;
}

// --- Running a problem. ---

// How a run ended, read from the optimizer's log.
enum class Outcome {
  kConverged,        // no stop line, every parameter correct to at least 4 digits
  kConvergedShort,   // no stop line, but some parameter has fewer than 4 correct digits
  kIterationLimit,   // "Iteration counter exceeded ..."
  kEvaluationLimit,  // "Evaluation counter exceeded ..."
  kToleranceTooSmall,
};

char const* name(Outcome outcome) {
  switch (outcome) {
    case Outcome::kConverged:
      return "converged";
    case Outcome::kConvergedShort:
      return "converged short";
    case Outcome::kIterationLimit:
      return "iteration limit";
    case Outcome::kEvaluationLimit:
      return "evaluation limit";
    case Outcome::kToleranceTooSmall:
      return "tolerance too small";
  }
  return "";
}

// Correct significant digits of estimate against the certified value, within [0, 11].
double logRelativeError(double estimate, double certified) {
  if (estimate == certified) {
    return kMaxLre;
  }
  double const lre = -std::log10(std::fabs(estimate - certified) / std::fabs(certified));
  return std::isnan(lre) ? 0.0 : std::clamp(lre, 0.0, kMaxLre);
}

struct Fit {
  Outcome outcome;
  double minLre;
  int iterations;
  int evaluations;
};

Fit fitNist(NistData const& data, Model model, bool logResponse, Vector const& start) {
  Vector target = data.y;
  if (logResponse) {
    std::transform(target.begin(), target.end(), target.begin(),
                   [](double y) { return std::log(y); });
  }
  LSProblem problem(std::make_shared<NistFunction>(model, data.x), target, start,
                    Vector(target.size(), 1.0), ConstrictionInspector<Estimation>());
  problem.setMaxEvaluations(kLimit);
  problem.setMaxIterations(kLimit);
  corvex_test::LogCapture capture;
  OptimizerResult const result = LMOptimizer().optimize(problem);

  Vector const point = result.getPoint();
  double minLre = kMaxLre;
  for (size_t k = 0; k < point.size(); ++k) {
    minLre = std::min(minLre, logRelativeError(point[k], data.certified[k]));
  }
  Outcome outcome = minLre >= kPassLre ? Outcome::kConverged : Outcome::kConvergedShort;
  for (std::string const& message : capture.messages(corvex_test::kError)) {
    if (message.rfind("Iteration counter", 0) == 0) {
      outcome = Outcome::kIterationLimit;
    } else if (message.rfind("Evaluation counter", 0) == 0) {
      outcome = Outcome::kEvaluationLimit;
    } else if (message.rfind("optimize ", 0) == 0) {
      outcome = Outcome::kToleranceTooSmall;
    }
  }
  return {outcome, minLre, result.getIterations(), result.getEvaluations()};
}

struct NistCase {
  char const* file;
  char const* difficulty;
  Model model;
  bool logResponse;
  Outcome fromStart1;
  Outcome fromStart2;
};

constexpr Outcome kOk = Outcome::kConverged;

// Every problem converges from start 2. The start-1 misses share one cause: the Newton
// correction of the LM parameter search runs on the Householder triangle rather than the
// rotated one, so from a far start the search may return a parameter whose step is much
// longer than the bound. MGH17 then jumps into overflow (cost NaN) on every trial until the
// bound has shrunk below the point tolerance, still at the start; BoxBOD lands on the plateau
// b2 ~ 104 where the model hardly depends on b2 and stops there as converged; MGH10 and
// Bennett5 crawl along their valleys until the evaluation limit.

NistCase const kNistCases[] = {
    {"Misra1a.dat", "lower", misra1a, false, kOk, kOk},
    {"Chwirut2.dat", "lower", chwirut, false, kOk, kOk},
    {"Chwirut1.dat", "lower", chwirut, false, kOk, kOk},
    {"Lanczos3.dat", "lower", lanczos, false, kOk, kOk},
    {"Gauss1.dat", "lower", gauss, false, kOk, kOk},
    {"Gauss2.dat", "lower", gauss, false, kOk, kOk},
    {"DanWood.dat", "lower", danWood, false, kOk, kOk},
    {"Misra1b.dat", "lower", misra1b, false, kOk, kOk},
    {"Kirby2.dat", "average", kirby2, false, kOk, kOk},
    {"Hahn1.dat", "average", hahn1, false, kOk, kOk},
    {"Nelson.dat", "average", nelson, true, kOk, kOk},
    {"MGH17.dat", "average", mgh17, false, Outcome::kConvergedShort, kOk},
    {"Lanczos1.dat", "average", lanczos, false, kOk, kOk},
    {"Lanczos2.dat", "average", lanczos, false, kOk, kOk},
    {"Gauss3.dat", "average", gauss, false, kOk, kOk},
    {"Misra1c.dat", "average", misra1c, false, kOk, kOk},
    {"Misra1d.dat", "average", misra1d, false, kOk, kOk},
    {"Roszman1.dat", "average", roszman1, false, kOk, kOk},
    {"ENSO.dat", "average", enso, false, kOk, kOk},
    {"MGH09.dat", "higher", mgh09, false, kOk, kOk},
    {"Thurber.dat", "higher", hahn1, false, kOk, kOk},
    {"BoxBOD.dat", "higher", misra1a, false, Outcome::kConvergedShort, kOk},
    {"Rat42.dat", "higher", rat42, false, kOk, kOk},
    {"MGH10.dat", "higher", mgh10, false, Outcome::kEvaluationLimit, kOk},
    {"Eckerle4.dat", "higher", eckerle4, false, kOk, kOk},
    {"Rat43.dat", "higher", rat43, false, kOk, kOk},
    {"Bennett5.dat", "higher", bennett5, false, Outcome::kEvaluationLimit, kOk},
};

TEST(LMOptimizer, FitsNistReferenceProblemsAsRecorded) {
  for (NistCase const& c : kNistCases) {
    NistData const data = readNist(c.file);
    ASSERT_FALSE(data.y.empty()) << c.file;
    ASSERT_EQ(data.x.size(), data.y.size()) << c.file;
    ASSERT_EQ(data.certified.size(), data.start1.size()) << c.file;
    Outcome const expected[] = {c.fromStart1, c.fromStart2};
    Vector const* starts[] = {&data.start1, &data.start2};
    for (int s = 0; s < 2; ++s) {
      Fit const fit = fitNist(data, c.model, c.logResponse, *starts[s]);
      EXPECT_STREQ(name(fit.outcome), name(expected[s]))
          << c.file << " (" << c.difficulty << ") start " << s + 1 << ": min LRE " << fit.minLre
          << ", " << fit.iterations << " iterations, " << fit.evaluations << " evaluations";
    }
  }
}

}  // namespace
}  // namespace Vantis::Location
