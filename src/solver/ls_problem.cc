#include "solver/ls_problem.h"

#include <cmath>

#include "interface/corvex_tag_logger.h"

namespace Vantis::Location {

LSProblem::LSProblem(std::shared_ptr<ValueAndJacobianFunction> const& model,
                     std::vector<double> const& target, std::vector<double> const& start,
                     std::vector<double> const& weights,
                     ConstrictionInspector<Estimation> const& /*inspector*/)
    : weightsSqrt_(std::make_shared<std::vector<double> const>(arraySqrt(weights))),
      target_(target),
      model_(model),
      start_(start) {
  if (!model_) {
    CorvexTagLogger::getInstance().error("LocalLeastSquaresProblem input error");
  }
}

std::vector<double> LSProblem::arraySqrt(std::vector<double> const& values) {
  std::vector<double> roots(values.size());
  for (size_t i = 0; i < values.size(); ++i) {
    roots[i] = std::sqrt(values[i]);
  }
  return roots;
}

Estimation LSProblem::evaluate(std::vector<double> const& point) {
  Estimation estimation;
  evaluate(point, estimation);
  return estimation;
}

void LSProblem::evaluate(std::vector<double> const& point, Estimation& into) {
  if (!model_) {
    CorvexTagLogger::getInstance().error("LocalLeastSquaresProblem model == NULL");
    evaluation_.value().clear();
    evaluation_.jacobian().resize(0, 0);
    into.assign(evaluation_, {}, {}, nullptr);
    return;
  }
  model_->calculateInto(point, evaluation_);
  into.assign(evaluation_, target_, point, weightsSqrt_);
}

}  // namespace Vantis::Location
