<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_TW">
<context>
    <name>GUIManagerReceiver</name>
    <message numerus="yes">
        <source>%n alerts, the latest:</source>
        <translation>
            <numerusform>共 %n 則警示，最新一則：</numerusform>
        </translation>
    </message>
    <message>
        <source>Alert</source>
        <translation>警示</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>確定</translation>
    </message>
    <message>
        <source>Choose a file in %1</source>
        <translation>請在 %1 中選擇檔案</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>開啟</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Entry</source>
        <translation>輸入</translation>
    </message>
    <message>
        <source>(image not available)</source>
        <translation>（無法顯示圖片）</translation>
    </message>
</context>
<context>
    <name>Lumaro::gui::PushButtonImpl</name>
    <message>
        <source>Locked</source>
        <translation>已鎖定</translation>
    </message>
</context>
<context>
    <name>MenuWidgetImpl</name>
    <message>
        <source>Meters</source>
        <translation>儀表</translation>
    </message>
    <message>
        <source>Oscilloscope</source>
        <translation>示波器</translation>
    </message>
    <message>
        <source>Analyzers</source>
        <translation>分析儀</translation>
    </message>
    <message>
        <source>VSWR</source>
        <translation>駐波比</translation>
    </message>
    <message>
        <source>Instruments</source>
        <translation>儀器</translation>
    </message>
    <message>
        <source>Receivers</source>
        <translation>接收機</translation>
    </message>
    <message>
        <source>Demod</source>
        <translation>解調</translation>
    </message>
    <message>
        <source>Generators</source>
        <translation>訊號產生器</translation>
    </message>
    <message>
        <source>Utilities</source>
        <translation>公用程式</translation>
    </message>
    <message>
        <source>System</source>
        <translation>系統</translation>
    </message>
    <message>
        <source>Config</source>
        <translation>設定</translation>
    </message>
    <message>
        <source>Self Test</source>
        <translation>自我測試</translation>
    </message>
    <message>
        <source>Scripting</source>
        <translation>腳本</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>語言</translation>
    </message>
    <message>
        <source>RF Generators</source>
        <translation>射頻訊號產生器</translation>
    </message>
    <message>
        <source>Ext. Power Supplies</source>
        <translation>外部電源供應器</translation>
    </message>
    <message>
        <source>DMM</source>
        <translation>數位電表</translation>
    </message>
    <message>
        <source>Digital Data Gen.</source>
        <translation>數位資料產生器</translation>
    </message>
    <message>
        <source>Calibrations</source>
        <translation>校準</translation>
    </message>
    <message>
        <source>Audio Generators</source>
        <translation>音訊產生器</translation>
    </message>
    <message>
        <source>Audio</source>
        <translation>音訊</translation>
    </message>
    <message>
        <source>Applications</source>
        <translation>應用程式</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>說明</translation>
    </message>
</context>
<context>
    <name>RotatableLabel</name>
    <message>
        <source>Configuration</source>
        <translation>組態設定</translation>
    </message>
</context>
<context>
    <name>StatusBarImpl</name>
    <message>
        <source>Reference Oscillator is set to &apos;External&apos;</source>
        <translation>參考振盪器已設為「外部」</translation>
    </message>
    <message>
        <source>Reference Oscillator is set to &apos;Internal&apos;</source>
        <translation>參考振盪器已設為「內部」</translation>
    </message>
</context>
<context>
    <name>WidgetBaseImpl</name>
    <message>
        <source>%1 %2, disconnecting from engine: %3</source>
        <extracomment>%1 is why (such as CORBA::TRANSIENT), %2 the attribute, %3 the window</extracomment>
        <translation>%1 %2，與引擎中斷連線：%3</translation>
    </message>
    <message>
        <source>Engine module: %1</source>
        <translation>引擎模組：%1</translation>
    </message>
    <message>
        <source>unknown</source>
        <translation>未知</translation>
    </message>
    <message>
        <source>Attribute: %1</source>
        <translation>屬性：%1</translation>
    </message>
    <message>
        <source>Locked by: %1</source>
        <translation>鎖定者：%1</translation>
    </message>
    <message>
        <source>another user interface</source>
        <translation>另一個使用者介面</translation>
    </message>
    <message>
        <source>this display</source>
        <translation>本顯示器</translation>
    </message>
    <message>
        <source>Last value: %1</source>
        <translation>最後數值：%1</translation>
    </message>
    <message>
        <source>none</source>
        <translation>無</translation>
    </message>
    <message>
        <source>not bound</source>
        <translation>未連結</translation>
    </message>
    <message>
        <source>live</source>
        <translation>即時</translation>
    </message>
    <message>
        <source>locked</source>
        <translation>已鎖定</translation>
    </message>
    <message>
        <source>engine lost</source>
        <translation>引擎中斷</translation>
    </message>
    <message>
        <source>State: %1</source>
        <translation>狀態：%1</translation>
    </message>
</context>
</TS>
