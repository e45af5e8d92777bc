// corvex._core: the library's entry point for Python. Frames arrive as numpy column arrays;
// everything per record happens here, in C++, and the library runs without the GIL.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "batch_locator.h"
#include "location_line_writer.h"
#include "number_text_parser.h"
#include "scan_columns.h"
#include "text_column.h"

namespace py = pybind11;

namespace corvex_python {
namespace {

template <typename T>
const T* columnData(py::dict const& columns, char const* name, size_t rows) {
  auto const array = columns[name].cast<py::array>();
  if (!py::isinstance<py::array_t<T>>(array) || array.ndim() != 1 ||
      static_cast<size_t>(array.size()) != rows || (array.flags() & py::array::c_style) == 0) {
    throw py::type_error(std::string("column '") + name + "' must be a contiguous array of " +
                         py::str(py::dtype::of<T>()).cast<std::string>());
  }
  return static_cast<const T*>(array.data());
}

py::array objectArray(py::handle values, char const* name) {
  auto const array = values.cast<py::array>();
  if (array.dtype().kind() != 'O' || array.ndim() != 1 ||
      (array.flags() & py::array::c_style) == 0) {
    throw py::type_error(std::string(name) + " must be a contiguous object array");
  }
  return array;
}

TextColumn textColumn(py::dict const& columns, char const* name, size_t rows, py::handle missing) {
  auto const array = objectArray(columns[name], name);
  if (static_cast<size_t>(array.size()) != rows) {
    throw py::type_error(std::string("column '") + name + "' has the wrong length");
  }
  TextColumn column(array, missing);
  if (column.firstBadRow() >= 0) {
    throw py::value_error(std::string("column '") + name + "', row " +
                          std::to_string(column.firstBadRow()) + ": expected text");
  }
  return column;
}

template <typename T, typename Field>
py::array_t<T> resultColumn(std::vector<GroupOutcome> const& outcomes, Field field) {
  py::array_t<T> column(static_cast<py::ssize_t>(outcomes.size()));
  T* out = column.mutable_data();
  for (GroupOutcome const& outcome : outcomes) {
    *out++ = field(outcome);
  }
  return column;
}

py::tuple candidate(Vantis::Location::LocateTrace::Outcome const& outcome) {
  return py::make_tuple(outcome.ran, outcome.lon, outcome.lat, outcome.acc, outcome.runTimeStamp,
                        outcome.code);
}

// What one call did, as plain Python values; stages are the records' fates in group order.
py::dict observedToPython(Vantis::Location::LocateTrace const& trace) {
  py::dict out;
  py::array_t<int8_t> stages(static_cast<py::ssize_t>(trace.fates.size()));
  std::transform(trace.fates.begin(), trace.fates.end(), stages.mutable_data(),
                 [](auto fate) { return static_cast<int8_t>(fate); });
  out["stages"] = stages;
  out["reference"] = trace.hasReference
                         ? py::object(py::make_tuple(trace.referenceLon, trace.referenceLat))
                         : py::object(py::none());
  out["solver"] = static_cast<int>(trace.solver);
  out["solver_iterations"] = trace.solverIterations;
  out["solver_evaluations"] = trace.solverEvaluations;
  out["solver_rms"] = trace.solverRms;
  out["main"] = candidate(trace.main);
  out["kmeans"] = candidate(trace.kmeans);
  out["winner"] = trace.winner;
  py::list buildings, floors;
  for (auto const& [building, count] : trace.indoorVote.buildingCounts) {
    buildings.append(py::make_tuple(decodeText(building), count));
  }
  for (auto const& [floor, count] : trace.indoorVote.floorCounts) {
    floors.append(py::make_tuple(floor, count));
  }
  out["buildings"] = buildings;
  out["floors"] = floors;
  out["building"] = decodeText(trace.indoorVote.building);
  out["floor"] = trace.indoorVote.floor;
  out["vote_applied"] = trace.indoorVote.applied;
  return out;
}

py::dict toPython(std::vector<GroupOutcome> const& outcomes, bool observed) {
  py::dict out;
  out["code"] = resultColumn<int32_t>(outcomes, [](auto const& o) { return o.code; });
  out["lon"] = resultColumn<double>(outcomes, [](auto const& o) { return o.result.lon; });
  out["lat"] = resultColumn<double>(outcomes, [](auto const& o) { return o.result.lat; });
  out["acc"] = resultColumn<float>(outcomes, [](auto const& o) { return o.result.acc; });
  out["confidence"] =
      resultColumn<double>(outcomes, [](auto const& o) { return o.result.confidence; });
  out["timeStamp"] =
      resultColumn<int64_t>(outcomes, [](auto const& o) { return o.result.timeStamp; });
  out["runTimeStamp"] =
      resultColumn<int64_t>(outcomes, [](auto const& o) { return o.result.runTimeStamp; });
  out["indoorFlag"] =
      resultColumn<int32_t>(outcomes, [](auto const& o) { return o.result.indoorFlag; });
  out["floorId"] = resultColumn<int32_t>(outcomes, [](auto const& o) { return o.result.floorId; });
  out["floorAcc"] =
      resultColumn<int32_t>(outcomes, [](auto const& o) { return o.result.floorAcc; });
  py::list geoId, floorInfo, trace, logGroup, logLevel, logMessage;
  double librarySeconds = 0;
  for (size_t g = 0; g < outcomes.size(); ++g) {
    GroupOutcome const& outcome = outcomes[g];
    librarySeconds += outcome.librarySeconds;
    geoId.append(decodeText(outcome.geoId));
    floorInfo.append(decodeText(outcome.floorInfo));
    trace.append(outcome.traceMissing ? py::object(py::none()) : decodeText(outcome.trace));
    for (auto const& line : outcome.log) {
      logGroup.append(g);
      logLevel.append(line.level);
      logMessage.append(decodeText(line.message));
    }
  }
  out["geoId"] = geoId;
  out["floorInfo"] = floorInfo;
  out["trace"] = trace;
  out["log"] = py::make_tuple(logGroup, logLevel, logMessage);
  out["library_seconds"] = librarySeconds;  // for benchmarks
  if (observed) {
    py::list observations;
    for (GroupOutcome const& outcome : outcomes) {
      observations.append(observedToPython(outcome.observed));
    }
    out["observed"] = observations;
  }
  return out;
}

py::dict locateGroups(py::dict const& columns, py::array_t<int64_t> const& rows,
                      py::array_t<int64_t> const& offsets, int jobs, int captureLevel,
                      py::handle missing, bool observe) {
  size_t const count = static_cast<size_t>(columns["timeStamp"].cast<py::array>().size());
  TextColumn const geoId = textColumn(columns, "geoId", count, missing);
  TextColumn const floorInfo = textColumn(columns, "floorInfo", count, missing);
  ScanColumns const scans{columnData<int64_t>(columns, "timeStamp", count),
                          columnData<int32_t>(columns, "rssi", count),
                          columnData<double>(columns, "confidence", count),
                          columnData<double>(columns, "lon", count),
                          columnData<double>(columns, "lat", count),
                          columnData<float>(columns, "acc", count),
                          columnData<int32_t>(columns, "locationType", count),
                          columnData<int32_t>(columns, "locationSourceType", count),
                          columnData<int32_t>(columns, "indoorFlag", count),
                          columnData<int32_t>(columns, "floorId", count),
                          columnData<int32_t>(columns, "floorAcc", count),
                          &floorInfo,
                          &geoId};
  size_t const groups = offsets.size() > 0 ? static_cast<size_t>(offsets.size()) - 1 : 0;
  const int64_t* const offset = offsets.data();
  for (size_t g = 0; g < groups; ++g) {
    if (offset[g] < 0 || offset[g + 1] < offset[g] || offset[g + 1] > rows.size() ||
        offset[g + 1] - offset[g] > INT_MAX) {
      throw py::value_error("group offsets out of order or range");
    }
  }
  const int64_t* const row = rows.data();
  for (py::ssize_t i = 0; i < rows.size(); ++i) {
    if (row[i] < 0 || static_cast<size_t>(row[i]) >= count) {
      throw py::value_error("row index out of range");
    }
  }
  std::vector<GroupOutcome> outcomes;
  {
    py::gil_scoped_release const unlocked;
    outcomes = BatchLocator(scans, captureLevel, observe).locateAll(row, offset, groups, jobs);
  }
  return toPython(outcomes, observe);
}

NumberTextParser::Kind kindNamed(std::string const& name) {
  if (name == "int64") return NumberTextParser::Kind::kInt64;
  if (name == "int32") return NumberTextParser::Kind::kInt32;
  if (name == "float64") return NumberTextParser::Kind::kDouble;
  if (name == "float32") return NumberTextParser::Kind::kFloat;
  throw py::value_error("unknown number kind '" + name + "'");
}

// Texts (None: no value) to a numpy array of the kind; where needed is false the text is not
// read and the value is 0. Returns (array, first bad row or -1, its problem).
py::tuple parseNumbers(py::list const& texts, std::string const& kindName,
                       std::optional<py::array_t<bool>> const& needed) {
  NumberTextParser::Kind const kind = kindNamed(kindName);
  size_t const count = texts.size();
  py::array values(py::dtype(kindName), std::vector<py::ssize_t>{static_cast<py::ssize_t>(count)});
  auto* out = static_cast<char*>(values.mutable_data());
  size_t const width = NumberTextParser::width(kind);
  std::memset(out, 0, count * width);
  std::string text, problem;
  for (size_t i = 0; i < count; ++i, out += width) {
    if (needed && !needed->at(i)) {
      continue;
    }
    py::handle const value = texts[i];
    if (value.is_none()) {
      return py::make_tuple(values, i, "no value");
    }
    if (!TextColumn::bytesOf(value, &text)) {
      throw py::type_error("number texts must be str");
    }
    if (!NumberTextParser::parse(text, kind, out, &problem)) {
      return py::make_tuple(values, i, problem);
    }
  }
  return py::make_tuple(values, -1, "");
}

std::string bytesOf(py::handle text) {
  std::string bytes;
  if (!TextColumn::bytesOf(text, &bytes)) {
    throw py::type_error("expected str or bytes");
  }
  return bytes;
}

py::str formatLine(py::handle tag, int code, py::handle message, double lon, double lat, float acc,
                   double confidence, int64_t timeStamp, int64_t runTimeStamp, int32_t indoorFlag,
                   py::handle geoId, int32_t floorId, int32_t floorAcc, py::handle floorInfo,
                   std::vector<int> infoCount) {
  LocationLine const line{bytesOf(tag),
                          code,
                          bytesOf(message),
                          lon,
                          lat,
                          acc,
                          confidence,
                          timeStamp,
                          runTimeStamp,
                          indoorFlag,
                          bytesOf(geoId),
                          floorId,
                          floorAcc,
                          bytesOf(floorInfo),
                          std::move(infoCount)};
  return decodeText(LocationLineWriter::write(line));
}

}  // namespace
}  // namespace corvex_python

PYBIND11_MODULE(_core, module) {
  using namespace corvex_python;
  module.doc() = "The corvex library for Python; use the corvex package, not this module.";
  module.attr("NO_CAPTURE") = BatchLocator::kNoCapture;
  module.def("locate_groups", &locateGroups, py::arg("columns"), py::arg("rows"),
             py::arg("offsets"), py::arg("jobs"), py::arg("capture_level"), py::arg("missing"),
             py::arg("observe") = false,
             "Locates each group of rows; columns maps field names to typed arrays. observe: "
             "also return what each call did.");
  module.def(
      "has_text",
      [](py::handle objects, py::handle missing) {
        return TextColumn::hasText(objectArray(objects, "objects"), missing);
      },
      py::arg("objects"), py::arg("missing"), "Where an object array holds a non-empty text.");
  module.def("parse_numbers", &parseNumbers, py::arg("texts"), py::arg("kind"),
             py::arg("needed") = py::none(), "Reads number texts as corvex locate does.");
  module.def("format_line", &formatLine, py::arg("tag"), py::arg("code"), py::arg("message"),
             py::arg("lon"), py::arg("lat"), py::arg("acc"), py::arg("confidence"),
             py::arg("timeStamp"), py::arg("runTimeStamp"), py::arg("indoorFlag"), py::arg("geoId"),
             py::arg("floorId"), py::arg("floorAcc"), py::arg("floorInfo"), py::arg("infoCount"),
             "One answer as a JSON line of corvex locate.");
}
