/* Version information of the camera.
 *
 * Stand-in: read once from "version-info" under the platform's root (see vconf.h for the root):
 * lines "project=...", "board=...", "firmware=...", 4 KiB in all. What is not said there comes from
 * a made-up camera. The texts belong to the library and are never null.
 */
#ifndef VERSION_INFO_H
#define VERSION_INFO_H

#ifdef __cplusplus
extern "C" {
#endif

#define VERSION_INFO_API __attribute__((visibility("default")))

VERSION_INFO_API const char* get_project_name(void);
VERSION_INFO_API const char* get_board_version_name(void);
VERSION_INFO_API const char* get_fw_version_full(void);

#ifdef __cplusplus
}
#endif

#endif
