#include "Bindings.h"
#include "Text.h"
#include "Turn.h"
#include "base/Failure.h"

#include <optional>
#include <pybind11/stl.h>
#include <utility>

namespace kvr::netlistdb::python {

namespace py = pybind11;

namespace {

/// Adds what file lists name, and refuses what the program refuses on its command line.
void complete(LoadRequest &request)
{
    std::vector<std::string> sources;
    for (const std::string &list : request.verilog.fileLists) {
        tool::readFileList(list, sources, request.verilog);
    }
    request.files.insert(request.files.begin(), sources.begin(), sources.end());
    if (request.files.empty()) {
        throw tool::wrongUsage(request.verilog.fileLists.empty()
                                   ? "no design given"
                                   : request.verilog.fileLists.front() + ": names no source");
    }
    for (const std::string &file : request.files) {
        const bool isVerilog = tool::isVerilogName(file);
        if (!isVerilog && request.verilog.given()) {
            throw tool::wrongUsage("include_dirs, defines and file_lists go with Verilog sources, which '" + file +
                                   "' is not");
        }
        if (!isVerilog && request.files.size() > 1) {
            throw tool::wrongUsage("'" + file + "': of netlists, a design is one; several files are Verilog sources");
        }
    }
}

std::optional<tool::Form> formCalled(const std::optional<std::string> &name)
{
    if (!name) {
        return std::nullopt;
    }
    for (const tool::Form form : {tool::Form::Elaborated, tool::Form::PostMap}) {
        if (*name == tool::nameOf(form)) {
            return form;
        }
    }
    throw py::value_error("form: '" + *name + "' is none of elaborated, post-map");
}

std::shared_ptr<Loaded> load(const std::vector<py::str> &files, const py::str &postMap,
                             const std::optional<std::string> &form, const py::str &top,
                             const std::vector<py::str> &cells, const py::str &sourceRoot,
                             const std::vector<py::str> &includeDirectories, const std::vector<py::str> &defines,
                             const std::vector<py::str> &fileLists, std::uint64_t maxInstances,
                             const py::object &progress)
{
    LoadRequest request;
    request.files = bytesOf(files);
    request.postMap = bytesOf(postMap);
    request.form = formCalled(form);
    request.top = bytesOf(top);
    request.cells = bytesOf(cells);
    request.sourceRoot = bytesOf(sourceRoot);
    request.verilog = {bytesOf(includeDirectories), bytesOf(defines), bytesOf(fileLists)};
    request.maxInstances = maxInstances;
    // What nobody waits for any more goes with the work.
    const auto result = std::make_shared<std::shared_ptr<Loaded>>();
    Job::run(
        [request = std::move(request), result](Job &job) mutable {
            complete(request);
            *result = Loaded::load(request, job);
        },
        progress);
    return std::move(*result);
}

Origin originOf(Loaded &self, bool isDevice)
{
    Origin origin{self.shared_from_this(), isDevice};
    if (isDevice && !self.hasDevice()) {
        throw tool::wrongUsage(origin.loaded->view(false).design.name() + ": the post-map form is not loaded");
    }
    origin.check();
    return origin;
}

/// Adds the question whether a handle is one of a design; @p is_device None: of either form.
template <class Handle> void addHoldsTo(py::class_<Loaded, std::shared_ptr<Loaded>> &type)
{
    type.def(
        "holds",
        [](const Loaded &self, const Handle &handle, std::optional<bool> isDevice) {
            const Origin &origin = handle.origin;
            return origin.loaded.get() == &self && origin.isDevice == isDevice.value_or(origin.isDevice);
        },
        py::arg("handle"), py::arg("is_device"));
}

} // namespace

void bindDesigns(py::module_ &module)
{
    auto type = makeClass<Loaded, std::shared_ptr<Loaded>>(module, "Loaded", "A design, one or both forms of it.");
    // By reference: a pointer to the object would be null for None.
    type.def_property_readonly("is_closed", [](const Loaded &self) { return self.isClosed(); });
    type.def_property_readonly("has_device", [](const Loaded &self) { return self.hasDevice(); });
    type.def_property_readonly("notes", [](const Loaded &self) { return texts(self.notes()); });
    type.def("close", [](Loaded &self) { self.close(); });
    type.def("name", [](Loaded &self, bool isDevice) { return text(originOf(self, isDevice).design().name()); });
    type.def("form",
             [](Loaded &self, bool isDevice) { return tool::nameOf(originOf(self, isDevice).design().form()); });
    type.def("top", [](Loaded &self, bool isDevice) {
        const Origin origin = originOf(self, isDevice);
        return InstanceHandle{origin, &origin.design().root()};
    });
    addHoldsTo<InstanceHandle>(type);
    addHoldsTo<NetHandle>(type);
    addHoldsTo<BusHandle>(type);
    module.def("load", &load, py::arg("files"), py::arg("post_map"), py::arg("form"), py::arg("top"), py::arg("cells"),
               py::arg("source_root"), py::arg("include_dirs"), py::arg("defines"), py::arg("file_lists"),
               py::arg("max_instances"), py::arg("progress"));
    module.def(
        "wait", [] { const Turn turn; }, "Waits for work that was left to itself.");
}

} // namespace kvr::netlistdb::python
