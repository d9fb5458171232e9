#pragma once

// Each registers the class of one file.
namespace appkit {

void registerImage();
void registerWorkspace();

}  // namespace appkit
