/* Version information as a camera might have it, from the platform's contract alone. */
const char* get_project_name(void);
const char* get_board_version_name(void);
const char* get_fw_version_full(void);

const char* get_project_name(void) {
  return "ANOTHER";
}
const char* get_board_version_name(void) {
  return "MP";
}
const char* get_fw_version_full(void) {
  return "9.9";
}
