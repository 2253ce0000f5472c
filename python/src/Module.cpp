#include "Bindings.h"
#include "NotFound.h"
#include "Text.h"
#include "base/Failure.h"

#include <exception>
#include <netlistdb/analysis/ProbePlan.h>
#include <new>

namespace kvr::netlistdb::python {

namespace py = pybind11;

namespace {

void raise(const char *name, const char *message)
{
    const py::object type = py::module_::import("netlistdb._errors").attr(name);
    PyErr_SetObject(type.ptr(), text(message).ptr());
}

void translate(std::exception_ptr fault)
{
    try {
        std::rethrow_exception(std::move(fault));
    } catch (const Closed &closed) {
        raise("ClosedError", closed.what());
    } catch (const NotFound &missing) {
        raise("NotFoundError", missing.what());
    } catch (const tool::Failure &failure) {
        raise("Error", failure.what());
    } catch (const tool::Interrupted &) {
        PyErr_SetNone(PyExc_KeyboardInterrupt);
    } catch (const analysis::PlanError &wrong) {
        raise("Error", wrong.what());
    }
}

} // namespace

void raiseFor(const std::exception_ptr &fault)
{
    try {
        translate(fault);
    } catch (const std::bad_alloc &) {
        PyErr_NoMemory();
    } catch (const std::exception &error) {
        PyErr_SetString(PyExc_RuntimeError, error.what());
    }
}

} // namespace kvr::netlistdb::python

PYBIND11_MODULE(_native, module)
{
    using namespace kvr::netlistdb::python;
    module.doc() = "What the package netlistdb stands on.";
    pybind11::register_exception_translator(&translate);
    bindDesigns(module);
    bindInstances(module);
    bindNets(module);
    bindSearch(module);
    bindClocks(module);
    bindCrossings(module);
    bindProbes(module);
    bindPlans(module);
}
