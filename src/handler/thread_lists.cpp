// The camera application's threads by name, as they stand in a stat line.

#include <orv/health.h>
#include <string.h>

// A name of more than 15 characters is cut by the kernel, and stands here as it is cut.
const char* exception_thread_list[] = {"(lumen-ui-host-n)", nullptr};

const char* monitor_thread_list[] = {"(recorder)",        "(CBackEndStill0)",  "(CBackEndStill1)",
                                     "(CBackEndStill2)",  "(CBackEndStill3)",  "(CBackEndStill4)",
                                     "(CBackEndStill5)",  "(CBackEndStill6)",  "(CBackEndStill7)",
                                     "(CBackEndStill8)",  "(CBackEndStill9)",  "(CBackEndQView10)",
                                     "(CBackEndQView11)", "(CBackEndQView12)", "(CBackEndQView13)",
                                     "(CLdcmProcess)",    "(CLdcsProcess)",    "(CRawProcess)",
                                     "(CSEProcess)",      "(CWBProcess)",      "(CEffectProcess)",
                                     "(CTransferProces)", "(AlarmTimer)",      "(videoErrHndl)",
                                     "(frontEndMsg)",     "(frontEndEvent)",   "(videoEvent)",
                                     "(FrontendQz)",      "(q7x_mipi_thread)", "(CaptureControll)",
                                     "(AeMain)",          "(AeMsg)",           "(AeComp)",
                                     "(AFMain)",          "(AwbMain)",         "(shell_lumenhost)",
                                     "(ui_th_common)",    "(lens_poll_th)",    "(LensControlServ)",
                                     "(StrobeSvc)",       "(GPSSvc)",          "(videosrc)",
                                     "(Liveview_Histog)", "(MG1Thread)",       "(MG2Thread)",
                                     "(ShutterPI)",       "(ShtTimer)",        "(Shutter Assert )",
                                     "(FD_task)",         "(Panorama_task)",   "(OBJ_task)",
                                     "(stman Listner)",   "(sensorapi)",       nullptr};

namespace {

bool holds(const char* const* list, const char* name) {
  for (; *list != nullptr; ++list) {
    if (strcmp(*list, name) == 0) {
      return true;
    }
  }
  return false;
}

}  // namespace

int exceptionThreadCheck(const char* name) {
  return holds(exception_thread_list, name) ? 0 : -1;
}

int monitorThreadCheck(const char* name) {
  return holds(monitor_thread_list, name) ? -1 : 0;
}
