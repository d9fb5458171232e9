#pragma once

// Each registers the classes of one file. load.cpp calls them, a superclass's before its subclasses'.
namespace foundation {

void registerObject();
void registerString();
void registerEnumerator();
void registerArray();
void registerNull();
void registerException();
void registerValue();
void registerNumber();
void registerData();
void registerDate();
void registerTimeZone();
void registerCalendarDate();
void registerDateComponents();
void registerDictionary();
void registerError();
void registerAttributedString();
void registerAutoreleasePool();
void registerCFDictionary();
void registerUrl();
void registerBundle();
void registerNotification();

// Registers every class of the framework, once; for those who may run before this library's static initialisers.
void load();

}  // namespace foundation
