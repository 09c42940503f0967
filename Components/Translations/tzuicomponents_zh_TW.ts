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
</TS>
