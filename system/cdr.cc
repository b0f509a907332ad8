// Call-record settings: the three call-record databases.
#include "agent/agent_log.h"
#include "cmcfg/cm_agent.h"
#include "platform/blocks/general_paths.h"
#include "platform/blocks/general_settings_accessor.h"

bool CMAgent::GetCDRData(bool createIfMissing) {
  InstanceRef<GeneralSettingsAccessor> settings(createIfMissing);
  if (!settings) {
    CMCFG_TRACE(this, "GetCDRData: failed to load general settings accessor.\n");
    return false;
  }
  InstanceRef<GeneralPaths> paths(createIfMissing);
  if (!paths) {
    CMCFG_TRACE(this, "GetCDRData: failed to load general paths accessor.\n");
    return false;
  }

  CDRData& cdr = generalData.cdr;
  GeneralSettingsAccessor::Lock lock;  // no reload by another thread meanwhile
  cdr.enabled = settings->cdrEnabled;
  cdr.statedRecords = settings->cdrStatedRecords;
  cdr.missedRecords = settings->cdrMissedRecords;
  cdr.failedRecords = settings->cdrFailedRecords;
  cdr.statedFiles = settings->cdrStatedFiles;
  cdr.missedFiles = settings->cdrMissedFiles;
  cdr.failedFiles = settings->cdrFailedFiles;

  struct Database {
    std::string* name;
    const char* fallback;
    std::string* path;
  };
  const Database databases[] = {
      {&paths->cdrStatedDb, "CDR_db", &cdr.statedPath},
      {&paths->cdrMissedDb, "missed_calls_db", &cdr.missedPath},
      {&paths->cdrFailedDb, "unsuccess_calls_db", &cdr.failedPath},
  };
  for (const Database& db : databases) {
    if (db.name->empty()) {
      *db.name = db.fallback;
      paths->Save();
    }
    *db.path = IsFileName(*db.name) ? telephonyPath + *db.name : *db.name;
  }

  CMCFG_TRACE(this, "GetCDRData: stated - %s[%u/%u], missed - %s[%u/%u], failed - %s[%u/%u].\n",
              cdr.statedPath.c_str(), cdr.statedRecords, cdr.statedFiles, cdr.missedPath.c_str(),
              cdr.missedRecords, cdr.missedFiles, cdr.failedPath.c_str(), cdr.failedRecords,
              cdr.failedFiles);
  return true;
}
