#pragma once

// Each registers the classes of one file. load.cpp calls them, a superclass's before its subclasses'.
namespace foundation {

void registerObject();
void registerString();
void registerEnumerator();
void registerArray();
void registerNull();
void registerException();
void registerAutoreleasePool();
void registerCFDictionary();
void registerUrl();
void registerBundle();

// Registers every class of the framework, once; for those who may run before this library's static initialisers.
void load();

}  // namespace foundation
