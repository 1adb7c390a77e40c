// Reading model files of many formats, by Assimp.
#pragma once

#include <Python.h>

#include <string>

/// As read_model() of model_files.h. Null with why set if the file cannot be read; throws PythonError.
PyObject *read_with_assimp(const char *path, std::string &why);
