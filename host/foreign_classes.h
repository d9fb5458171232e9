#pragma once

namespace host {

// Registers the classes that other plug-ins of the family would bring: exceptions, errors, images and attributed
// strings of the platform, and its geometry. Once a process; after the frameworks are loaded.
void registerForeignClasses();

}  // namespace host
