// Fits the NIST StRD nonlinear regression problems (tests/solver/nist_strd) and checks the
// optimizer against their certified parameter values.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <memory>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "solver/function_model.h"
#include "solver/lm_optimizer.h"
#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using corvex_test::Matrix;
using corvex_test::Vector;

constexpr double kPi = 3.14159265358979323846;
constexpr double kMaxLre = 11.0;  // the certified values carry 11 significant digits

struct NistData {
  Matrix x;  // predictors, one row per observation
  Vector y;
  Vector starts[2];
  Vector certified;
};

// Parameters sit before line 60, observations (y first) after it.
NistData readNist(std::string const& file) {
  std::ifstream in(std::string(CORVEX_SOURCE_DIR) + "/tests/solver/nist_strd/" + file);
  std::regex const parameterLine(R"(^\s*b\d+\s*=\s*(\S+)\s+(\S+)\s+(\S+)\s+\S+\s*$)");
  NistData data;
  std::string line;
  for (int number = 1; std::getline(in, line); ++number) {
    line.erase(std::remove(line.begin(), line.end(), '\r'), line.end());
    std::smatch match;
    if (number < 60 && std::regex_match(line, match, parameterLine)) {
      data.starts[0].push_back(std::stod(match[1]));
      data.starts[1].push_back(std::stod(match[2]));
      data.certified.push_back(std::stod(match[3]));
    }
    std::istringstream fields(line);
    Vector row;
    for (double value = 0.0; number > 60 && fields >> value;) row.push_back(value);
    if (!row.empty()) {
      data.y.push_back(row[0]);
      data.x.emplace_back(row.begin() + 1, row.end());
    }
  }
  return data;
}

// A value with its derivatives by up to nine parameters, carried through the arithmetic
// (forward-mode differentiation), so that each model is written once as a formula.
struct Dual {
  Dual(double value = 0.0) : v(value), d{} {}  // implicit: constants mix with parameters
  double v;
  std::array<double, 9> d;
};

// The value with the derivatives x * a' + y * b'.
Dual combine(double value, Dual const& a, double x, Dual const& b, double y) {
  Dual result(value);
  for (size_t k = 0; k < result.d.size(); ++k) result.d[k] = x * a.d[k] + y * b.d[k];
  return result;
}
Dual operator+(Dual const& a, Dual const& b) { return combine(a.v + b.v, a, 1.0, b, 1.0); }
Dual operator-(Dual const& a, Dual const& b) { return combine(a.v - b.v, a, 1.0, b, -1.0); }
Dual operator*(Dual const& a, Dual const& b) { return combine(a.v * b.v, a, b.v, b, a.v); }
Dual operator/(Dual const& a, Dual const& b) {
  return combine(a.v / b.v, a, 1.0 / b.v, b, -a.v / (b.v * b.v));
}
// f(a) for f(a.v) = value with slope f'(a.v).
Dual chain(Dual const& a, double value, double slope) { return combine(value, a, slope, a, 0.0); }
Dual operator-(Dual const& a) { return chain(a, -a.v, -1.0); }
Dual exp(Dual const& a) { return chain(a, std::exp(a.v), std::exp(a.v)); }
Dual log(Dual const& a) { return chain(a, std::log(a.v), 1.0 / a.v); }
Dual sqrt(Dual const& a) { return chain(a, std::sqrt(a.v), 0.5 / std::sqrt(a.v)); }
Dual sin(Dual const& a) { return chain(a, std::sin(a.v), std::cos(a.v)); }
Dual cos(Dual const& a) { return chain(a, std::cos(a.v), -std::sin(a.v)); }
Dual atan(Dual const& a) { return chain(a, std::atan(a.v), 1.0 / (1.0 + a.v * a.v)); }
Dual pow(Dual const& a, double p) { return chain(a, std::pow(a.v, p), p * std::pow(a.v, p - 1.0)); }
Dual pow(Dual const& a, Dual const& b) { return exp(b * log(a)); }  // for a > 0

using Duals = std::vector<Dual>;
using X = Vector const&;  // predictors
using B = Duals const&;   // parameters
// Model value at the predictors x for the parameters b.
using Model = Dual (*)(X x, B b);

Dual misra1a(X x, B b) { return b[0] * (1.0 - exp(-b[1] * x[0])); }  // also BoxBOD
Dual misra1b(X x, B b) { return b[0] * (1.0 - 1.0 / pow(1.0 + b[1] * x[0] / 2.0, 2.0)); }
Dual misra1c(X x, B b) { return b[0] * (1.0 - 1.0 / sqrt(1.0 + 2.0 * b[1] * x[0])); }
Dual misra1d(X x, B b) { return b[0] * b[1] * x[0] / (1.0 + b[1] * x[0]); }
Dual chwirut(X x, B b) { return exp(-b[0] * x[0]) / (b[1] + b[2] * x[0]); }
Dual danWood(X x, B b) { return b[0] * pow(x[0], b[1]); }
Dual nelson(X x, B b) { return b[0] - b[1] * x[0] * exp(-b[2] * x[1]); }  // fits log(y)
Dual mgh17(X x, B b) { return b[0] + b[1] * exp(-x[0] * b[3]) + b[2] * exp(-x[0] * b[4]); }
Dual roszman1(X x, B b) { return b[0] - b[1] * x[0] - atan(b[2] / (x[0] - b[3])) / kPi; }
Dual rat42(X x, B b) { return b[0] / (1.0 + exp(b[1] - b[2] * x[0])); }
Dual rat43(X x, B b) { return b[0] / pow(1.0 + exp(b[1] - b[2] * x[0]), 1.0 / b[3]); }
Dual mgh10(X x, B b) { return b[0] * exp(b[1] / (x[0] + b[2])); }
Dual eckerle4(X x, B b) { return b[0] / b[1] * exp(-0.5 * pow((x[0] - b[2]) / b[1], 2.0)); }
Dual bennett5(X x, B b) { return b[0] * pow(b[1] + x[0], -1.0 / b[2]); }
Dual mgh09(X x, B b) {
  return b[0] * (x[0] * x[0] + x[0] * b[1]) / (x[0] * x[0] + x[0] * b[2] + b[3]);
}
Dual lanczos(X x, B b) {
  return b[0] * exp(-b[1] * x[0]) + b[2] * exp(-b[3] * x[0]) + b[4] * exp(-b[5] * x[0]);
}
Dual gauss(X x, B b) {
  return b[0] * exp(-b[1] * x[0]) + b[2] * exp(-pow((x[0] - b[3]) / b[4], 2.0)) +
         b[5] * exp(-pow((x[0] - b[6]) / b[7], 2.0));
}
// Cubic over cubic for Hahn1 and Thurber, quadratic over quadratic for Kirby2.
Dual hahn1(X x, B b) {
  double const x2 = x[0] * x[0];
  double const x3 = x2 * x[0];
  return (b[0] + b[1] * x[0] + b[2] * x2 + b[3] * x3) / (1.0 + b[4] * x[0] + b[5] * x2 + b[6] * x3);
}
Dual kirby2(X x, B b) {
  double const x2 = x[0] * x[0];
  return (b[0] + b[1] * x[0] + b[2] * x2) / (1.0 + b[3] * x[0] + b[4] * x2);
}
Dual enso(X x, B b) {
  double const t = 2.0 * kPi * x[0];
  return b[0] + b[1] * std::cos(t / 12.0) + b[2] * std::sin(t / 12.0) + b[4] * cos(t / b[3]) +
         b[5] * sin(t / b[3]) + b[7] * cos(t / b[6]) + b[8] * sin(t / b[6]);
}

// --- Running a problem. ---

// Correct significant digits of estimate against the certified value, within [0, 11].
double logRelativeError(double estimate, double certified) {
  if (estimate == certified) return kMaxLre;
  double const lre = -std::log10(std::fabs(estimate - certified) / std::fabs(certified));
  return std::isnan(lre) ? 0.0 : std::clamp(lre, 0.0, kMaxLre);
}

// How a run ended, read from the optimizer's log, and the least number of correct digits.
struct Fit {
  std::string outcome;
  double minLre;
};

Fit fitNist(NistData const& data, Model model, bool logResponse, Vector const& start) {
  Vector target = data.y;
  if (logResponse) {
    std::transform(target.begin(), target.end(), target.begin(),
                   [](double y) { return std::log(y); });
  }
  auto const function = [model, &data](Vector const& point) {
    Duals b(point.begin(), point.end());
    for (size_t k = 0; k < b.size(); ++k) b[k].d[k] = 1.0;
    Vector value;
    Matrix jacobian;
    for (Vector const& x : data.x) {
      Dual const y = model(x, b);
      value.push_back(y.v);
      jacobian.emplace_back(y.d.begin(), y.d.begin() + b.size());
    }
    return ValueAndJacobian(value, jacobian);
  };
  LSProblem problem = corvex_test::problemWith(
      std::make_shared<corvex_test::FunctionModel>(function), target, start);
  corvex_test::LogCapture capture;
  Vector const point = LMOptimizer().optimize(problem).getPoint();
  Fit fit{"", kMaxLre};
  for (size_t k = 0; k < point.size(); ++k) {
    fit.minLre = std::min(fit.minLre, logRelativeError(point[k], data.certified[k]));
  }
  // No stop line: converged, short when some parameter has fewer than 4 correct digits.
  fit.outcome = fit.minLre >= 4.0 ? "converged" : "converged short";
  for (std::string const& message : capture.messages(corvex_test::kError)) {
    if (message.rfind("Iteration counter", 0) == 0) fit.outcome = "iteration limit";
    if (message.rfind("Evaluation counter", 0) == 0) fit.outcome = "evaluation limit";
    if (message.rfind("optimize ", 0) == 0) fit.outcome = "tolerance too small";
  }
  return fit;
}

// Every problem converges from start 2. The start-1 misses share one cause: the Newton
// correction of the LM parameter search runs on the Householder triangle rather than the
// rotated one, so from a far start the search may return a parameter whose step is much
// longer than the bound. MGH17 then jumps into overflow (cost NaN) on every trial until the
// bound has shrunk below the point tolerance, still at the start; BoxBOD lands on the plateau
// b2 ~ 104 where the model hardly depends on b2 and stops there as converged; MGH10 and
// Bennett5 crawl along their valleys until the evaluation limit.
struct NistCase {
  char const* file;
  char const* difficulty;
  Model model;
  bool logResponse;
  char const* fromStart1;
};

constexpr char kOk[] = "converged";

NistCase const kNistCases[] = {
    {"Misra1a.dat", "lower", misra1a, false, kOk},
    {"Chwirut2.dat", "lower", chwirut, false, kOk},
    {"Chwirut1.dat", "lower", chwirut, false, kOk},
    {"Lanczos3.dat", "lower", lanczos, false, kOk},
    {"Gauss1.dat", "lower", gauss, false, kOk},
    {"Gauss2.dat", "lower", gauss, false, kOk},
    {"DanWood.dat", "lower", danWood, false, kOk},
    {"Misra1b.dat", "lower", misra1b, false, kOk},
    {"Kirby2.dat", "average", kirby2, false, kOk},
    {"Hahn1.dat", "average", hahn1, false, kOk},
    {"Nelson.dat", "average", nelson, true, kOk},
    {"MGH17.dat", "average", mgh17, false, "converged short"},
    {"Lanczos1.dat", "average", lanczos, false, kOk},
    {"Lanczos2.dat", "average", lanczos, false, kOk},
    {"Gauss3.dat", "average", gauss, false, kOk},
    {"Misra1c.dat", "average", misra1c, false, kOk},
    {"Misra1d.dat", "average", misra1d, false, kOk},
    {"Roszman1.dat", "average", roszman1, false, kOk},
    {"ENSO.dat", "average", enso, false, kOk},
    {"MGH09.dat", "higher", mgh09, false, kOk},
    {"Thurber.dat", "higher", hahn1, false, kOk},
    {"BoxBOD.dat", "higher", misra1a, false, "converged short"},
    {"Rat42.dat", "higher", rat42, false, kOk},
    {"MGH10.dat", "higher", mgh10, false, "evaluation limit"},
    {"Eckerle4.dat", "higher", eckerle4, false, kOk},
    {"Rat43.dat", "higher", rat43, false, kOk},
    {"Bennett5.dat", "higher", bennett5, false, "evaluation limit"},
};

TEST(LMOptimizer, FitsNistReferenceProblemsAsRecorded) {
  for (NistCase const& c : kNistCases) {
    NistData const data = readNist(c.file);
    ASSERT_FALSE(data.y.empty()) << c.file;
    ASSERT_EQ(data.x.size(), data.y.size()) << c.file;
    ASSERT_EQ(data.certified.size(), data.starts[0].size()) << c.file;
    for (int s = 0; s < 2; ++s) {
      Fit const fit = fitNist(data, c.model, c.logResponse, data.starts[s]);
      EXPECT_EQ(fit.outcome, s == 0 ? c.fromStart1 : kOk)
          << c.file << " (" << c.difficulty << ") start " << s + 1 << ": min LRE " << fit.minLre;
    }
  }
}

}  // namespace
}  // namespace Vantis::Location
