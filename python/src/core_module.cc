// corvex._core: the library's entry point for Python. Frames arrive as numpy column arrays;
// everything per record happens here, in C++, and the library runs without the GIL.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <algorithm>
#include <climits>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "batch_locator.h"
#include "column_collector.h"
#include "scan_columns.h"
#include "text_column.h"
#include "tools/file_locator.h"
#include "tools/scan_stream_reader.h"

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

// Adds a numpy column per field: the field of structOf(element) for every element, in order.
template <typename T, typename Struct, typename Elements, typename StructOf>
void addColumns(py::dict* columns, Elements const& elements, StructOf structOf,
                std::initializer_list<std::pair<char const*, T Struct::*>> fields) {
  for (auto const& [name, member] : fields) {
    T Struct::*const field = member;  // a lambda cannot capture a structured binding in C++17
    py::array_t<T> column(static_cast<py::ssize_t>(elements.size()));
    std::transform(elements.begin(), elements.end(), column.mutable_data(),
                   [&](auto const& element) { return structOf(element).*field; });
    (*columns)[name] = column;
  }
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

py::str textOrEmpty(char const* text) { return decodeText(text != nullptr ? text : ""); }

py::dict toPython(std::vector<GroupOutcome> const& outcomes, bool observed) {
  py::dict out;
  using Call = corvex_cli::TagLocator::Outcome;
  using Result = AggregateLocationResult;
  auto const callOf = [](GroupOutcome const& o) -> Call const& { return o.call; };
  auto const resultOf = [](GroupOutcome const& o) -> Result const& { return o.call.result; };
  addColumns<int32_t, Call>(&out, outcomes, callOf, {{"code", &Call::code}});
  addColumns<double, Result>(
      &out, outcomes, resultOf,
      {{"lon", &Result::lon}, {"lat", &Result::lat}, {"confidence", &Result::confidence}});
  addColumns<float, Result>(&out, outcomes, resultOf, {{"acc", &Result::acc}});
  addColumns<int64_t, Result>(
      &out, outcomes, resultOf,
      {{"timeStamp", &Result::timeStamp}, {"runTimeStamp", &Result::runTimeStamp}});
  addColumns<int32_t, Result>(&out, outcomes, resultOf,
                              {{"indoorFlag", &Result::indoorFlag},
                               {"floorId", &Result::floorId},
                               {"floorAcc", &Result::floorAcc}});
  py::list geoId, floorInfo, trace, logGroup, logLevel, logMessage;
  double librarySeconds = 0;
  for (size_t g = 0; g < outcomes.size(); ++g) {
    GroupOutcome const& outcome = outcomes[g];
    librarySeconds += outcome.librarySeconds;
    geoId.append(textOrEmpty(outcome.call.geoId.get()));
    floorInfo.append(textOrEmpty(outcome.call.floorInfo.get()));
    char const* const traceLog = outcome.call.traceLog.get();
    trace.append(traceLog != nullptr ? py::object(decodeText(traceLog)) : py::object(py::none()));
    for (auto const& line : outcome.call.log) {
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
  ScanColumns const scans{count,
                          columnData<int64_t>(columns, "timeStamp", count),
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

// The records of a scan file as columns ("-": standard input), read as corvex locate reads
// them. Returns (columns, None), or (None, "path:line: problem").
py::tuple readScans(std::string const& path) {
  ColumnCollector collector;
  std::string error;
  bool read = false;
  {
    py::gil_scoped_release const unlocked;
    read = corvex_cli::ScanStreamReader::readFile(path, /*strict=*/false, &collector, &error);
  }
  if (!read) {
    return py::make_tuple(py::none(), py::bytes(error));
  }
  using Info = AggregateScanInfo;
  auto const itself = [](Info const& info) -> Info const& { return info; };
  py::dict columns;
  addColumns<int64_t, Info>(&columns, collector.infos(), itself, {{"timeStamp", &Info::timeStamp}});
  addColumns<int32_t, Info>(&columns, collector.infos(), itself,
                            {{"rssi", &Info::rssi},
                             {"locationType", &Info::locationType},
                             {"locationSourceType", &Info::locationSourceType},
                             {"indoorFlag", &Info::indoorFlag},
                             {"floorId", &Info::floorId},
                             {"floorAcc", &Info::floorAcc}});
  addColumns<double, Info>(
      &columns, collector.infos(), itself,
      {{"confidence", &Info::confidence}, {"lon", &Info::lon}, {"lat", &Info::lat}});
  addColumns<float, Info>(&columns, collector.infos(), itself, {{"acc", &Info::acc}});
  for (auto const& [name, field] :
       {std::pair{"tag", ColumnCollector::kTag}, std::pair{"geoId", ColumnCollector::kGeoId},
        std::pair{"floorInfo", ColumnCollector::kFloorInfo}}) {
    py::list texts;
    for (std::string const& text : collector.texts(field)) {
      texts.append(decodeText(text));
    }
    columns[name] =
        py::make_tuple(py::array_t<int64_t>(static_cast<py::ssize_t>(collector.codes(field).size()),
                                            collector.codes(field).data()),
                       texts);
  }
  return py::make_tuple(columns, py::none());
}

// What `corvex locate` does, for `python -m corvex locate`. Returns (exit code, the answers'
// bytes for stdout, the messages for stderr as bytes).
py::tuple locateFile(corvex_cli::FileLocator::Request const& request) {
  corvex_cli::FileLocator::Outcome outcome;
  {
    py::gil_scoped_release const unlocked;
    outcome = corvex_cli::FileLocator::run(request);
  }
  py::list messages;
  for (std::string const& message : outcome.messages) {
    messages.append(py::bytes(message));
  }
  return py::make_tuple(outcome.exitCode, py::bytes(outcome.text), messages);
}

// Rows grouped by code (0 to groups - 1), each group's rows in input order, and where each
// group starts: a counting sort, linear in the rows.
py::tuple rowsByGroup(py::array_t<int64_t, py::array::c_style | py::array::forcecast> const& codes,
                      int64_t groups) {
  if (groups < 0) {
    throw py::value_error("groups must not be negative");
  }
  int64_t const* const code = codes.data();
  auto const count = static_cast<size_t>(codes.size());
  py::array_t<int64_t> offsets(groups + 1);
  int64_t* const start = offsets.mutable_data();
  std::fill(start, start + groups + 1, 0);
  for (size_t row = 0; row < count; ++row) {
    if (code[row] < 0 || code[row] >= groups) {
      throw py::value_error("code out of range");
    }
    ++start[code[row] + 1];
  }
  for (int64_t g = 0; g < groups; ++g) {
    start[g + 1] += start[g];
  }
  py::array_t<int64_t> rows(static_cast<py::ssize_t>(count));
  int64_t* const out = rows.mutable_data();
  std::vector<int64_t> next(start, start + groups);
  for (size_t row = 0; row < count; ++row) {
    out[next[static_cast<size_t>(code[row])]++] = static_cast<int64_t>(row);
  }
  return py::make_tuple(rows, offsets);
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
  module.def(
      "first_non_text",
      [](py::handle objects, py::handle missing) {
        return TextColumn::firstNonText(objectArray(objects, "objects"), missing);
      },
      py::arg("objects"), py::arg("missing"),
      "Row of the first object that is neither text nor missing, or -1.");
  module.def("rows_by_group", &rowsByGroup, py::arg("codes"), py::arg("groups"),
             "(rows, offsets): group g holds rows[offsets[g]:offsets[g + 1]], in input order.");
  module.def("read_scans", &readScans, py::arg("path"),
             "The records of a scan file as columns, or the file's first mistake.");
  module.def(
      "locate_file",
      [](std::string path, std::string format, std::string output, std::string log, size_t newest,
         int jobs, bool strict, bool progress) {
        return locateFile({std::move(path), std::move(format), std::move(output), std::move(log),
                           newest, jobs, strict, progress});
      },
      py::arg("path"), py::arg("format"), py::arg("output"), py::arg("log"), py::arg("newest"),
      py::arg("jobs"), py::arg("strict"), py::arg("progress"),
      "Runs corvex locate on a file: (exit code, stdout bytes, stderr messages).");
}
