<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_TW">
<context>
    <name>DemoNavigation</name>
    <message>
        <source>Engine GUI module %1, announced by module discovery.</source>
        <translation>引擎 GUI 模組 %1，由模組探索發布。</translation>
    </message>
</context>
<context>
    <name>DemoScreens</name>
    <message>
        <source>Span: 10 MHz</source>
        <translation>頻寬範圍：10 MHz</translation>
    </message>
    <message>
        <source>RBW: 30 kHz</source>
        <translation>解析頻寬：30 kHz</translation>
    </message>
    <message>
        <source>Reference: 0 dBm</source>
        <translation>參考位準：0 dBm</translation>
    </message>
    <message>
        <source>Full-screen module: the close button returns to the desktop.</source>
        <translation>全螢幕模組：按關閉鈕即可返回桌面。</translation>
    </message>
    <message>
        <source>Reference: internal 10 MHz</source>
        <translation>參考來源：內部 10 MHz</translation>
    </message>
    <message>
        <source>Fan: automatic</source>
        <translation>風扇：自動</translation>
    </message>
    <message>
        <source>Display: 80 %</source>
        <translation>顯示亮度：80 %</translation>
    </message>
</context>
<context>
    <name>DemoWidgets</name>
    <message>
        <source>No action sent</source>
        <translation>尚未送出動作</translation>
    </message>
    <message numerus="yes">
        <source>%1 sent %n action(s)</source>
        <translation>
            <numerusform>%1 已送出 %n 個動作</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>HostWindow</name>
    <message>
        <source>Exit</source>
        <translation>離開</translation>
    </message>
    <message>
        <source>Save layout</source>
        <translation>儲存版面配置</translation>
    </message>
    <message>
        <source>Restore layout</source>
        <translation>還原版面配置</translation>
    </message>
    <message>
        <source>Full screen</source>
        <translation>全螢幕</translation>
    </message>
</context>
<context>
    <name>Lumaro::gui::PushButtonImpl</name>
    <message>
        <source>Run</source>
        <translation>執行</translation>
    </message>
    <message>
        <source>Run now</source>
        <translation>立即執行</translation>
    </message>
</context>
<context>
    <name>MenuBar</name>
    <message>
        <source>Power Meter</source>
        <translation>功率計</translation>
    </message>
    <message>
        <source>System Overview</source>
        <translation>系統總覽</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Power Meter</source>
        <translation>功率計</translation>
    </message>
    <message>
        <source>Spectrum</source>
        <translation>頻譜</translation>
    </message>
    <message>
        <source>Notes</source>
        <translation>備忘</translation>
    </message>
    <message>
        <source>System Overview</source>
        <translation>系統總覽</translation>
    </message>
    <message>
        <source>Device Control</source>
        <translation>裝置控制</translation>
    </message>
    <message>
        <source>Engine Controls</source>
        <translation>引擎控制</translation>
    </message>
</context>
<context>
    <name>SubMenuItem</name>
    <message>
        <source>Spectrum</source>
        <translation>頻譜</translation>
    </message>
    <message>
        <source>Notes</source>
        <translation>備忘</translation>
    </message>
    <message>
        <source>Engine Controls</source>
        <translation>引擎控制</translation>
    </message>
    <message>
        <source>Tools</source>
        <translation>工具</translation>
    </message>
    <message>
        <source>Engine modules</source>
        <translation>引擎模組</translation>
    </message>
</context>
</TS>
