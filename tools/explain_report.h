#ifndef CORVEX_TOOLS_EXPLAIN_REPORT_H_
#define CORVEX_TOOLS_EXPLAIN_REPORT_H_

#include <string>

#include "tools/explain_model.h"

namespace corvex_cli {

// Turns what one location call did into one self-contained HTML page: the data goes in as
// JSON and the page's own script draws the map, the stage chart and the tables, so the page
// needs nothing from the network unless tiles are asked for.
class ExplainReport {
 public:
  // Leaflet's script and style, inlined when the map is to be drawn over map tiles.
  struct Tiles {
    std::string script;
    std::string style;
  };

  // tiles: null draws the plain local map and fetches nothing.
  static std::string render(ExplainModel const& model, Tiles const* tiles);
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_EXPLAIN_REPORT_H_
