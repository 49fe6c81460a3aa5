// Starts the interpreter, with the modules that are not in its own tables.
#include <Python.h>
#include <frozen_modules/importlib._bootstrap.h>
#include <frozen_modules/importlib._bootstrap_external.h>
#include <frozen_modules/zipimport.h>
#include <pycore_import.h>

// There is no DLL: it looks for its library from the program.
void* PyWin_DLLhModule = NULL;
char const* PyWin_DLLVersionString = "3.11";

static const struct _frozen bootstrap[] = {
    {"_frozen_importlib", _Py_M__importlib__bootstrap, sizeof _Py_M__importlib__bootstrap, 0, NULL},
    {"_frozen_importlib_external", _Py_M__importlib__bootstrap_external, sizeof _Py_M__importlib__bootstrap_external, 0,
     NULL},
    {"zipimport", _Py_M__zipimport, sizeof _Py_M__zipimport, 0, NULL},
    {NULL, NULL, 0, 0, NULL},
};
static const struct _frozen none[] = {{NULL, NULL, 0, 0, NULL}};
static const struct _module_alias aliases[] = {
    {"_frozen_importlib", "importlib._bootstrap"},
    {"_frozen_importlib_external", "importlib._bootstrap_external"},
    {NULL, NULL},
};
const struct _frozen* _PyImport_FrozenBootstrap = bootstrap;
const struct _frozen* _PyImport_FrozenStdlib = none;
const struct _frozen* _PyImport_FrozenTest = none;
const struct _module_alias* _PyImport_FrozenAliases = aliases;
const struct _frozen* PyImport_FrozenModules = NULL;

int _Py_Deepfreeze_Init(void) {
    return 0;
}
void _Py_Deepfreeze_Fini(void) {}

PyMODINIT_FUNC PyInit__ctypes(void);
PyMODINIT_FUNC PyInit__overlapped(void);
PyMODINIT_FUNC PyInit__socket(void);
PyMODINIT_FUNC PyInit__sqlite3(void);
PyMODINIT_FUNC PyInit_select(void);
PyMODINIT_FUNC PyInit_unicodedata(void);

int wmain(int argc, wchar_t** argv) {
    PyImport_AppendInittab("_ctypes", PyInit__ctypes);
    PyImport_AppendInittab("_overlapped", PyInit__overlapped);
    PyImport_AppendInittab("_socket", PyInit__socket);
    PyImport_AppendInittab("_sqlite3", PyInit__sqlite3);
    PyImport_AppendInittab("select", PyInit_select);
    PyImport_AppendInittab("unicodedata", PyInit_unicodedata);
    return Py_Main(argc, argv);
}
