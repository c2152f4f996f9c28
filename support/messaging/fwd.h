// Declares what the other headers of this module define. Made by scripts/module_headers.
#pragma once

namespace nxSupport {

class AppInitMsg;
class AsyncTask;
class Broadcaster;
class CallInfo;
class CallInfoControl;
class Context;
class ContextObserver;
class DataSink;
class Domain;
class InitializeLuaMsg;
class InitializeReflectionMsg;
class Job;
class JobQueue;
class PreClearResourcesMsg;
class Priority;
class ServiceDomain;

}  // namespace nxSupport
