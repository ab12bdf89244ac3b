#pragma once

#include <memory>
#include <string>

#include "records/tkRecord.h"

// The process-wide default record that supplies the fields of every new timer and row. Built
// on first use, never destroyed. It travels in the preferences file.
tkRecord& defaultRecord();

// A new copy of the default record (shares its billing codes).
std::shared_ptr<tkRecord> newFromDefault();

// Copies record into the default record and posts "Note: default record changed.".
void setDefaultRecord(const tkRecord& record);

// getField(name) on the default record.
tkStringConvertible* getDefaultField(const std::string& name);

// Sets one field of the default record and posts "Note: default record changed.", except when
// a billing code is set to the very object that the field already holds. When the known lists
// refuse a new billing code the field stays as it is, and the notification still fires.
void setDefaultField(const std::string& name, const std::string& text);
