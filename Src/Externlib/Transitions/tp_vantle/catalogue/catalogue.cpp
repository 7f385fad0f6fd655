#include "catalogue/catalogue.h"

#include <iterator>
#include <string_view>

#include "catalogue/transitions.h"

namespace {

constexpr char TRANS_TYPE[] = "vantle type";

/// A record with its texts in place. A text too long for its field does not compile.
consteval TransInfo record(std::wstring_view name, TransFunc* transition, std::wstring_view guid) {
    TransInfo info{};
    info.nType = 2;
    info.pfnTransition = transition;
    name.copy(info.szName, name.size());
    guid.copy(info.szGuid, guid.size());
    return info;
}

}  // namespace

// The index in this table is what hosts know a transition by: rows are never moved.
constinit const TransInfo g_arTransInfo[42] = {
    record(L"Row_vantle", TrRowVantle, L"4C481959-DA74-459b-B538-D0590BFB2CE"),
    record(L"Col_vantle", TrColVantle, L"25045AAA-9ACA-445c-B24C-21052C9B8D27"),
    record(L"Cross_vantle", TrCrossVantle, L"50C89935-C9C8-44a1-A4F4-99B8A29A517A"),
    record(L"Row_split", TrRowSplit, L"98CD2167-3F82-4eaf-AE93-D8EFFDCECC1E"),
    record(L"Col_split", TrColSplit, L"48497ECE-F824-4480-A04D-984977F3AA29"),
    record(L"Row_merge", TrRowMerge, L"47EEB6BF-8E99-488f-BCD8-ABD73A495CB4"),
    record(L"Col_merge", TrColMerge, L"84611DFC-9C1F-4f2a-B514-B434D849B956"),
    record(L"Cross_split", TrCrossSplit, L"75A09E8D-21D1-4c4e-AEA9-EB9CEC11A644"),
    record(L"Cross_merge", TrCrossMerge, L"0D227E56-DB1E-4fe4-B07B-A9C062FF6F73"),
    record(L"Rect_zoom_in", TrRectZoomIn, L"CACF5228-B4B6-44e2-91C6-4CA8367EECBA"),
    record(L"Rect_zoom_out", TrRectZoomOut, L"F7BD83DF-999C-4d09-8F4C-85DAB842E720"),
    record(L"Skew_right_split", TrSkewLeftSplit, L"2D4099D2-9B28-437f-8FEB-2A7E25C0B549"),
    record(L"Skew_left_split", TrSkewRightSplit, L"5003D879-7930-44fa-A333-F21F62564709"),
    record(L"Skew_left_merge", TrSkewLeftMerge, L"DECFFC57-1EE6-41ef-A453-75EBC7E9172B"),
    record(L"Skew_right_merge", TrSkewRightMerge, L"40164154-9921-419c-A4D2-3751573655F0"),
    record(L"Round_zoom_out", TrRoundZoomIn, L"97D5B991-903E-43bc-9B03-A808F74692D3"),
    record(L"Round_zoom_in", TrRoundZoomOut, L"ABBD7AED-1384-4fd2-862B-E955E5F9C3AE"),
    record(L"Diamond_zoom_in", TrDiamondZoomIn, L"9303303E-2AFC-4301-B2C7-F4C5F681A580"),
    record(L"Diamond_zoom_out", TrDiamondZoomOut, L"06E3515B-3EA3-4071-AD49-B9EDCD468B93"),
    record(L"Roll_clockwise", TrRollClockwise, L"1EE81222-189E-4159-A917-D15EE518D2FF"),
    record(L"Roll_anti_clockwise", TrRollAntiClockwise, L"8115A683-09ED-4d19-8D8F-A6010B6EEEBA"),
    record(L"Vertical_shutter", TrVerShutter, L"B4292352-81D3-4e7d-ACC9-F040150E41A3"),
    record(L"Horizontal_shutter", TrHorShutter, L"DCD3D68E-FFCD-4240-B1EE-348E9E393CC9"),
    record(L"Cross_shutter_1", TrCrossShutter1, L"AFED7E12-9A02-49d4-8233-7EB50FB749B9"),
    record(L"Cross_shutter_2", TrCrossShutter2, L"0922661A-A249-40f7-999B-A60DBD447E2F"),
    record(L"Grid_zoom_in", TrGridZoomIn, L"426F529C-3486-4973-BA25-F61A4955A0A1"),
    record(L"Grid_zoom_out", TrGridZoomOut, L"0E7A04C3-95DA-4633-9AF3-E39BCC95B86F"),
    record(L"Deposit_up", TrDepositUp, L"A8D9BD07-A79B-4f00-952E-9FDE7072CF64"),
    record(L"sweep_clockwise", TrSweepClockwise, L"74876B99-7AD0-49b3-91D4-D3136E9A850A"),
    record(L"sweep_anti_clockwise", TrSweepAntiClockwise, L"32B08589-D9BB-486a-A9D7-E78D29099EEE"),
    record(L"Row_cos_vantle", TrRowCosVantle, L"C8C1ED9D-959D-453f-8EFD-93D5BF7F5B23"),
    record(L"Row_cos_slide", TrRowCosSlide, L"07222DAB-BE45-487e-9A30-02AB42C2D70D"),
    record(L"Row_split_2", TrRowSplit2, L"715C64BE-0B6A-4780-95B0-FD580A21F521"),
    record(L"Col_split_2", TrColSplit2, L"DC4F36FC-68B4-40b9-A08C-5B60EFA8546E"),
    record(L"Topple", TrTopple, L"AEF2EDAC-9644-4874-9481-C7DD64FAF04F"),
    record(L"Blind_1", TrBlind, L"14FA525B-900A-402f-88B3-F28EEAFC31D8"),
    record(L"Twrl", TrTwrl, L"664A7041-693D-47c1-81CB-DFAA211D485B"),
    record(L"Zoom", TrZoom, L"40B96872-E6B9-4f73-9B78-4D88339AE56B"),
    record(L"Pinwheel", TrWind, L"668D3D30-43B8-41ef-A222-86E7912A497E"),
    record(L"Linear Wipe Down", TrLinearWipeUpDown, L"C456899A-C306-4f88-ACD9-5B158A5B1F48"),
    record(L"Linear Wipe Right", TrLinearWipeLeftRight, L"6675F015-A329-4ee9-9A89-E5427799D0BD"),
    record(L"Dissolve 2", TrFadeNew, L"BDC34DEB-D6DA-4aaa-90A9-787BBD841775"),
};

const char* GetTransType() { return TRANS_TYPE; }

std::int32_t GetTransCount() { return static_cast<std::int32_t>(std::size(g_arTransInfo)); }

const TransInfo* GetTransInfo(std::int32_t index) {
    return index >= 0 && index < GetTransCount() ? &g_arTransInfo[index] : nullptr;
}
