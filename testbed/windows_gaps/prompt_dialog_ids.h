/* Numbers that the resource script and the dialog's code share. */
#define IDD_CREDENTIAL_PROMPT 100
#define IDC_PROMPT_MESSAGE 1001
#define IDC_PROMPT_USER 1002
#define IDC_PROMPT_PASSWORD 1003
#define IDC_PROMPT_SAVE 1004
