// Numbers of the program's resources and controls, shared with the resource compiler.
// Every control has a number of its own, so that it can be found from outside as well.
#pragma once

#define IDI_PROGRAM 1 // the windows take theirs by this number too (ui/kit/modWindow)

#define IDR_WELCOME_TEXT 101 // type "TXT"
#define IDR_LOGO 101         // type "JPG"
#define IDR_LOGO_SMALL 102   // type "JPG"

#define IDD_BUILDER 200
#define IDD_PAGE_WELCOME 201
#define IDD_PAGE_BASE 202
#define IDD_PAGE_PLUGINS 203
#define IDD_PAGE_SUMMARY 204
#define IDD_PAGE_BUILD 205
#define IDD_PROGRESS 210
#define IDD_SELOS 211
#define IDD_ITEMS 212
#define IDD_SETUP 213
#define IDD_CHECK 214
#define IDD_CATEGORIES 215
#define IDD_PROBLEMS 220
#define IDD_PASSWORD 221

// frmBuilder; its Cancel button is IDCANCEL
#define IDC_CMD_HELP 1000
#define IDC_CMD_BACK 1001
#define IDC_CMD_NEXT 1002
#define IDC_LBL_HEADING 1010
#define IDC_LBL_SUBHEADING 1011
#define IDC_IMG_LOGO 1012
#define IDC_IMG_LOGO_SMALL 1013
#define IDC_LBL_HEADING_SM 1014
#define IDC_LBL_HEADING_SM2 1015
#define IDC_LINE_TOP 1016
#define IDC_LINE_BOTTOM 1017
#define IDC_CMD_PROBLEMS 1018

// pages
#define IDC_TXT_WELCOME 1100
#define IDC_LBL_WELCOME_NEXT 1101
#define IDC_LST_BASE 1110
#define IDC_CMD_BASE_DETAILS 1111
#define IDC_TXT_PROG_PATH 1112
#define IDC_CMD_PROG_PATH 1113
#define IDC_TXT_WIN_PATH 1114
#define IDC_CMD_WIN_PATH 1115
#define IDC_LBL_WIN_PRODUCT 1116
#define IDC_CMD_SCAN 1117
#define IDC_PIC_FRAME1 1118
#define IDC_PIC_FRAME2 1119
#define IDC_LST_PLUGINS 1130
#define IDC_CMD_PLUGIN_DETAILS 1131
#define IDC_PIC_FRAME3 1132
#define IDC_LBL_PROG_PATH 1120
#define IDC_LBL_WIN_PATH 1121
#define IDC_TXT_SUMMARY 1140
#define IDC_LBL_SUMMARY 1141
#define IDC_LBL_FOREIGN 1142
#define IDC_IMG_FOREIGN 1143
#define IDC_LST_PROGRESS 1150
#define IDC_LABEL3 1151
#define IDC_LBL_FILE 1152
#define IDC_BAR_OVERALL 1153

// the build log's context menu
#define IDM_COPY 1170
#define IDM_SEL_ALL 1171
#define IDM_SAVE_LOG 1172

// frmProgress; its Cancel button is IDCANCEL
#define IDC_LBL_RATE 1200
#define IDC_SHP_PROGRESS 1201
#define IDC_LBL_FILE_NAME 1202
#define IDC_LBL_DETAIL 1203
#define IDC_LBL_REASON 1204

// frmSelOS; its Cancel button is IDCANCEL
#define IDC_CMD_STOP 1220
#define IDC_CMD_SELECT 1221
#define IDC_LST_FOUND 1222
#define IDC_LABEL1 1223

// frmItems; its Close button is IDCANCEL
#define IDC_LBL_ITEM_NAME 1240
#define IDC_TXT_ITEM_ARCHIVE 1241
#define IDC_TXT_ITEM_CATEGORY 1242
#define IDC_TXT_ITEM_URL 1243
#define IDC_TXT_ITEM_CRC 1244
#define IDC_TXT_ITEM_STATE 1245
#define IDC_TXT_ITEM_TICK 1246

// frmProblems; its Close button is IDCANCEL
#define IDC_LST_NOT_DONE 1260
#define IDC_TXT_NOT_DONE 1261
#define IDC_CMD_COPY 1262

// frmPassword; its buttons are IDOK and IDCANCEL
#define IDC_LBL_PASSWORD 1270
#define IDC_TXT_PASSWORD 1271
#define IDC_LBL_PASSWORD_HINT 1272

// frmSetup; its Exit button is IDCANCEL. The control arrays count from their first number on:
// text 0 name, 1 file name, 4 address, 5 checksum; combo 0 entry, 1 enabled, 2 locked, 3 category
#define IDC_TXT_BASE 1300
#define IDC_CMB_BASE 1310
#define IDC_TXT_BASE_PLUGIN 1320
#define IDC_CMB_BASE_PLUGIN 1330
#define IDC_CMD_BUTTONS 1340
#define IDC_FRA_BASE 1360
#define IDC_FRA_PLUGIN 1361
#define IDC_TXT_FOLDER 1362
#define IDC_CMB_INSTALL_PATH 1363
#define IDC_CMD_APPLY 1364
#define IDC_CMD_DISCARD 1365
#define IDC_CMD_CHECK 1366
#define IDC_LBL_STATE 1367
#define IDC_CMD_CATEGORIES 1368
#define IDC_FRA_INSTALL 1369
#define IDC_LBL_SETUP_HEADING 1370
#define IDC_LBL_SETUP_SUBHEADING 1371
#define IDC_IMG_SETUP_LOGO 1372
#define IDC_LINE_SETUP_TOP 1373
#define IDC_LINE_SETUP_BOTTOM 1374

// frmCheck; its Close button is IDCANCEL
#define IDC_LBL_PROBLEMS 1380
#define IDC_LST_PROBLEMS 1381
#define IDC_CMD_GO_TO 1382
#define IDC_TXT_PROBLEM 1383
#define IDC_CMD_CHECK_COPY 1384

// frmCategories; its buttons are IDOK and IDCANCEL as well
#define IDC_LBL_CATEGORIES 1390
#define IDC_LST_CATEGORIES 1391
#define IDC_CMD_CATEGORY_ADD 1392
#define IDC_CMD_CATEGORY_REMOVE 1393
#define IDC_CMD_CATEGORY_UP 1394
#define IDC_CMD_CATEGORY_DOWN 1395
#define IDC_LBL_CATEGORY_KEY 1396
#define IDC_TXT_CATEGORY_KEY 1397
#define IDC_LBL_CATEGORY_FOLDER 1398
#define IDC_TXT_CATEGORY_FOLDER 1399
#define IDC_CHK_SHOW_CATEGORIES 1400
