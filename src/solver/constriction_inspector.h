#ifndef CORVEX_SOLVER_CONSTRICTION_INSPECTOR_H_
#define CORVEX_SOLVER_CONSTRICTION_INSPECTOR_H_

namespace Vantis::Location {

// Convergence inspector slot of a least-squares problem. The optimizer decides convergence
// itself, so the inspector carries neither data nor behaviour.
template <typename T>
class ConstrictionInspector {};

}  // namespace Vantis::Location

#endif  // CORVEX_SOLVER_CONSTRICTION_INSPECTOR_H_
