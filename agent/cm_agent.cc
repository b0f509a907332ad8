#include "cmcfg/cm_agent.h"

#include <cstdarg>
#include <new>

#include "agent/agent_log.h"
#include "cmcfg/functions.h"
#include "cmcfg/tone_type_reader.h"
#include "platform/base/config_root.h"
#include "platform/base/log_stream.h"
#include "platform/base/thread_mutex.h"
#include "platform/blocks/gateway_accessor.h"
#include "platform/blocks/general_paths.h"
#include "platform/blocks/general_settings_accessor.h"
#include "platform/blocks/log_login_accessor.h"
#include "platform/blocks/sys_message_accessor.h"
#include "platform/blocks/tos_params_accessor.h"
#include "platform/extension/extension_manager.h"
#include "platform/line/codecs.h"
#include "platform/line/line_manager.h"

namespace {

// System messages are numbered 0..337.
const int kLastSysMessage = 337;
const unsigned kAttendantSlots = 16;
// More extensions than any appliance can serve: a larger setting is a
// mistake, and honouring it would ask for gigabytes of empty slots.
const uint32_t kMaxBaseCapacity = 1u << 20;

}  // namespace

CMAgent::CMAgent() {
  // The load reads every file of the root: opened from one descriptor of
  // the root, each costs one system call less than on its own.
  cfg::RootScope rootScope;
  baseMutex = new ThreadMutex;
  shListMutex = new ThreadMutex;
  toneMutex = new ThreadMutex;
  LineManager::SetLineDB(cfg::TelephonyPath("linedb"));

  // Held open for the whole load: the loaders below open and close these
  // accessors again, and the reference count keeps them from being re-read
  // each time.
  GeneralSettingsAccessor::GetInstance(true);
  GeneralPaths::GetInstance(true);
  GatewayAccessor::GetInstance(true);
  TosParamsAccessor::GetInstance(true);

  // Nothing may escape into the call-control process: running out of
  // memory ends the load with what is loaded so far.
  try {
    Init("cmcfg.log", false);
    // The load logs a few lines per extension; written one by one they
    // cost more than the load itself. Released (written) when the load
    // ends, so the caller finds every line in the file.
    if (logStream != nullptr) logStream->Hold();
    extensionBase.resize(baseCapacity, nullptr);
    attendants.reserve(kAttendantSlots);

    GetGeneralData(false);
    GetRuntimeDbNames(false);
    GetCDRData(false);
    GetExternalUserDB(generalData.externalUserCacheDb, &generalData.externalUserCache, true);
    GetExternalUserDB(generalData.externalUserDb, &generalData.externalUsers, false);
    GetAutologinDB();
    if (!GetPstnAgentData(false)) generalData.pstnAgentType = 1;  // FXO

    Load();
  } catch (const std::bad_alloc&) {
    CMCFG_TRACE(this, "CMAgent: out of memory; the load stopped at %u extensions.\n",
                static_cast<unsigned>(extensionBase.size()));
  }

  if (logStream != nullptr) logStream->Release();

  GeneralSettingsAccessor::CloseInstance();
  GeneralPaths::CloseInstance();
  GatewayAccessor::CloseInstance();
  TosParamsAccessor::CloseInstance();
  LineManager::UnsetLineDB();
}

CMAgent::~CMAgent() {
  delete logStream;
  logStream = nullptr;
  delete baseMutex;
  delete shListMutex;
  delete toneMutex;
  baseMutex = shListMutex = toneMutex = nullptr;
  Destroy();
  // The system attendant is made by Init and handed to nobody else.
  delete generalData.sysAttendant;
  generalData.sysAttendant = nullptr;
}

void CMAgent::Init(const char* logName, bool logFlag) {
  LoadToneTypes();
  _gDefRingPattern.Init();

  // Init may run again; never leak what an earlier run opened.
  delete extensionManager;
  delete lineManager;
  delete fxsLineManager;
  delete encodingManager;
  extensionManager = new ExtensionManager(cfg::TelephonyPath("extensiondb"), true);
  lineManager = new LineManager(LineManagerBase::kLineDb, cfg::TelephonyPath("linedb"), true);
  fxsLineManager = new LineManager(LineManagerBase::kFxsLines, cfg::TelephonyPath("linedb"), true);
  encodingManager = new EncodingManager("", cfg::TelephonyPath("fax.cfg"), false);
  telephonyPath = cfg::TelephonyPath("");

  LoadLogLevel();
  delete logStream;
  logStream = new LogStream(logName ? logName : "cmcfg.log", logFlag, false, 2147483647, 1, 2048, false);

  if (InstanceRef<GeneralSettingsAccessor> settings{false}) {
    // Another thread's GetLogLevel may reload the shared instance meanwhile.
    GeneralSettingsAccessor::Lock lock;
    if (settings->maxExtensions > baseCapacity) baseCapacity = settings->maxExtensions;
    if (baseCapacity > kMaxBaseCapacity) {
      CMCFG_TRACE(this, "Init: %u extensions asked for; the table holds at most %u.\n",
                  static_cast<unsigned>(settings->maxExtensions), kMaxBaseCapacity);
      baseCapacity = kMaxBaseCapacity;
    }
  }

  sysMessageNames.clear();
  if (InstanceRef<SysMessageAccessor> messages{false}) {
    std::string name;
    for (int id = 0; id <= kLastSysMessage; ++id)
      if (messages->GetSysMessageName(id, name)) sysMessageNames.push_back(name);
  }

  if (CHAttendant* system = extensionManager->GetSystemExtension(true)) {
    delete generalData.sysAttendant;
    generalData.sysAttendant = new Attendant(*system);
    GetAttCodecData(generalData.sysAttendant, nullptr);
  }
}

void CMAgent::Load() {
  if (extensionManager == nullptr) return;
  static const ExtType kOrder[] = {kExtAttendant, kExtUser, kExtPickup, kExtCallPark, kExtPaging};
  std::list<std::string> names;
  for (ExtType type : kOrder) {
    extensionManager->GetAllExtensionsNames(type, names);
    for (const std::string& name : names) LoadExtensionDB(name, type);
  }
}

void CMAgent::Destroy() {
  CMCFG_TRACE(this,
              "******* CM has been loaded (hope successfully :) ), destoying all temporary "
              "instances *******\n\n");
  if (logStream != nullptr) logStream->Flush();
  delete extensionManager;
  delete lineManager;
  delete fxsLineManager;
  delete encodingManager;
  extensionManager = nullptr;
  lineManager = nullptr;
  fxsLineManager = nullptr;
  encodingManager = nullptr;
}

void CMAgent::LOG(const char* format, ...) {
  if (logStream == nullptr) return;
  va_list args;
  va_start(args, format);
  logStream->TRACE(0, format, args, 0);
  va_end(args);
}

void CMAgent::LoadLogLevel() {
  // Threads re-reading the flags at once take turns; each flag is written
  // only when it changes, so the threads that merely test it meet no write
  // while the configuration stays as it is.
  static ThreadMutex turns;
  MutexLock turn(&turns);
  bool enabled = logEnabled;
  bool second = logLevelSecond;
  GetLogLevel(&enabled, &second);
  if (enabled != logEnabled) logEnabled = enabled;
  if (second != logLevelSecond) logLevelSecond = second;
  if (LogLoginAccessor* login = LogLoginAccessor::GetInstance(true)) {
    bool both;
    {
      LogLoginAccessor::Lock lock;
      both = login->loginTrace != 0 && login->loginAudit != 0;
    }
    LogLoginAccessor::CloseInstance(login);
    if (both != logLogin) logLogin = both;
  }
}

void CMAgent::LoadToneTypes() {
  MutexLock lock(toneMutex);
  ToneTypeReader reader;
  reader.Load(toneTypes);
}

bool CMAgent::IsWaveOn(DeviceTone tone) {
  // Out-of-range tones (negative ones too: they would index outside the
  // table) are played from their sound files.
  if (static_cast<int>(tone) > kDeviceToneCount - 1 || static_cast<int>(tone) < 0) return true;
  if (generalData.toneWaveMode == 1) return true;
  if (generalData.toneWaveMode == 2) return false;
  MutexLock lock(toneMutex);
  return toneTypes[tone].is_play_wav_on;
}
