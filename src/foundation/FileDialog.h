// Asking the user for a file. Blocks the program until the dialog is closed.
#pragma once

#include "foundation/GString.h"
#include "foundation/Types.h"

// Lets the user choose a model descriptor, first shown those in the folder, which is absolute and ends in a slash. The
// buffer holds the present choice or an empty text, and takes the new one. 1 if one was chosen, 0 if not; a dialog that
// breaks is fatal.
UINT32 C_SysFileOpen(const char* InitialFolder, char* Buffer, UINT32 BufferSize);

// Lets the user choose a model descriptor below Data/Models of the working directory. RelPath holds the present choice
// and takes the new one, relative to the working directory, as a mesh's name in a level has it. 1 if it did, else 0:
// the dialog was cancelled, or the file lies elsewhere or has a blank in its path, which standard output tells.
UINT32 C_SysOpenModelFile(GString& RelPath);
