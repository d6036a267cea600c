#include "app/prefs/toolbar_icons.h"

#include <cstring>

#define ZR_ICON(body)                                                                              \
    "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 24 24\" fill=\"none\" "               \
    "stroke=\"currentColor\" stroke-width=\"1.7\" stroke-linecap=\"round\" "                       \
    "stroke-linejoin=\"round\">" body "</svg>"

#define ZR_MAGNIFIER "<circle cx='10.5' cy='10.5' r='6.3'/><path d='M15.2 15.2 L20.4 20.4'/>"

const std::array<ToolbarIcon, 19> kToolbarIcons{{
    {"openImage", ZR_ICON("<path d='M3.6 18.6 V6 A1.2 1.2 0 0 1 4.8 4.8 H9.4 L11.6 7.2 H18 "
                          "A1.2 1.2 0 0 1 19.2 8.4 V10.4'/>"
                          "<path d='M3.6 18.6 L6.3 10.4 H22 L19.2 18.6 Z'/>")},
    {"openBuiltInScene",
     ZR_ICON("<path d='M12 3.6 C12.6 9 15 11.4 20.4 12 C15 12.6 12.6 15 12 20.4 C11.4 15 9 12.6 "
             "3.6 12 C9 11.4 11.4 9 12 3.6 Z'/><path d='M19 4 V7 M17.5 5.5 H20.5 M5.5 17 V20 M4 "
             "18.5 H7'/>")},
    {"saveImage", ZR_ICON("<path d='M12 3.8 V14.6 M7.8 10.6 L12 14.8 L16.2 10.6'/>"
                          "<path d='M4 15.4 V18.6 A1.4 1.4 0 0 0 5.4 20 H18.6 "
                          "A1.4 1.4 0 0 0 20 18.6 V15.4'/>")},
    {"undo", ZR_ICON("<path d='M8.4 4.8 L4 9.2 L8.4 13.6'/>"
                     "<path d='M4.4 9.2 H14.2 A5.2 5.2 0 0 1 14.2 19.6 H9.6'/>")},
    {"redo", ZR_ICON("<path d='M15.6 4.8 L20 9.2 L15.6 13.6'/>"
                     "<path d='M19.6 9.2 H9.8 A5.2 5.2 0 0 0 9.8 19.6 H14.4'/>")},
    {"zoomIn", ZR_ICON(ZR_MAGNIFIER "<path d='M10.5 7.6 V13.4 M7.6 10.5 H13.4'/>")},
    {"zoomOut", ZR_ICON(ZR_MAGNIFIER "<path d='M7.6 10.5 H13.4'/>")},
    {"zoomToFit", ZR_ICON("<path d='M4 8.6 V4 H8.6 M15.4 4 H20 V8.6 M20 15.4 V20 H15.4 M8.6 20 H4 "
                          "V15.4'/><rect x='8' y='8.8' width='8' height='6.4' rx='0.8' "
                          "fill='currentColor' fill-opacity='0.35' stroke='none'/>")},
    {"zoomToPixels", ZR_ICON("<path d='M4.4 8.8 L7.2 6.6 V17.4 M15.4 8.8 L18.2 6.6 V17.4'/>"
                             "<circle cx='12' cy='9.8' r='0.7' fill='currentColor'/>"
                             "<circle cx='12' cy='15' r='0.7' fill='currentColor'/>")},
    {"view.source",
     ZR_ICON("<rect x='3.4' y='4.8' width='17.2' height='14.4' rx='1.6'/>"
             "<path d='M9.2 7.6 C9.5 9.7 10.3 10.5 12.4 10.8 C10.3 11.1 9.5 11.9 9.2 14 C8.9 11.9 "
             "8.1 11.1 6 10.8 C8.1 10.5 8.9 9.7 9.2 7.6 Z' fill='currentColor' stroke='none'/>"
             "<circle cx='16.6' cy='8.6' r='1' fill='currentColor' stroke='none'/>"
             "<circle cx='15.2' cy='15' r='1.3' fill='currentColor' stroke='none'/>")},
    {"view.depth", ZR_ICON("<path d='M12 4 L20.4 8.3 L12 12.6 L3.6 8.3 Z' fill='currentColor' "
                           "fill-opacity='0.35'/>"
                           "<path d='M3.6 12 L12 16.3 L20.4 12 M3.6 15.8 L12 20.1 L20.4 15.8'/>")},
    {"view.anaglyph",
     ZR_ICON(
         "<path d='M3 8.4 H10.6 V12.6 A3.4 3.4 0 0 1 7.2 16 H6.4 A3.4 3.4 0 0 1 3 12.6 Z' "
         "fill='#e8403a'/>"
         "<path d='M13.4 8.4 H21 V12.6 A3.4 3.4 0 0 1 17.6 16 H16.8 A3.4 3.4 0 0 1 13.4 12.6 Z' "
         "fill='#1fb7c4'/><path d='M10.6 9.6 H13.4'/>")},
    {"view.sbs", ZR_ICON("<rect x='2.8' y='5.6' width='8.4' height='12.8' rx='1.2'/>"
                         "<rect x='12.8' y='5.6' width='8.4' height='12.8' rx='1.2'/>"
                         "<circle cx='7.7' cy='12' r='1.5' fill='currentColor' stroke='none'/>"
                         "<circle cx='16.3' cy='12' r='1.5' fill='currentColor' stroke='none'/>")},
    {"preferences",
     ZR_ICON("<path d='M3.8 6.6 H12.2 M17 6.6 H20.2 M3.8 12 H6.2 M11 12 H20.2 "
             "M3.8 17.4 H13.4 M18.2 17.4 H20.2'/><circle cx='14.6' cy='6.6' r='2.2'/>"
             "<circle cx='8.6' cy='12' r='2.2'/>"
             "<circle cx='15.8' cy='17.4' r='2.2'/>")},
    {"playWiggle", ZR_ICON("<path d='M7.6 5 V19 L19 12 Z' fill='currentColor' "
                           "fill-opacity='0.35'/>")},
    {"pausePlayback", ZR_ICON("<path d='M8.4 5.4 V18.6 M15.6 5.4 V18.6' stroke-width='3.4'/>")},
    {"stopPlayback", ZR_ICON("<rect x='6' y='6' width='12' height='12' rx='1.4' "
                             "fill='currentColor' fill-opacity='0.35'/>")},
    {"playFlyby",
     ZR_ICON("<path d='M3.6 18.4 C7.4 18.4 6.4 8.4 11.4 8.4 C14.4 8.4 14 12.4 16.4 12.4' "
             "stroke-dasharray='2.6 2.6'/><path d='M15.2 8 L21.6 12.4 L15.2 16.8 Z' "
             "fill='currentColor' fill-opacity='0.35'/>")},
    {"menuArrow", ZR_ICON("<path d='M6.5 9.5 L12 15 L17.5 9.5' stroke-width='2.4'/>")},
}};

const char* toolbarIconFor(const char* action)
{
    for (const ToolbarIcon& icon : kToolbarIcons)
        if (std::strcmp(icon.action, action) == 0)
            return icon.svg;
    return nullptr;
}
