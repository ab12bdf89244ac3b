#include "records/tkRecordFields.h"

std::string fieldTitle(const std::string& name) {
    for (size_t i = 0; i < kFieldNames.size(); ++i) {
        if (name == kFieldNames[i]) {
            return kFieldTitles[i];
        }
    }
    return kUnknownFieldTitle;
}

bool isFieldName(const std::string& name) {
    for (const char* field : kFieldNames) {
        if (name == field) {
            return true;
        }
    }
    return false;
}
