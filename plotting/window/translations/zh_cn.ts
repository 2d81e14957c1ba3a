<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
<context>
    <name>CursorReader</name>
    <message>
        <source>%1  %2
%3 s</source>
        <translation>%1  %2
%3 秒</translation>
    </message>
</context>
<context>
    <name>CurveList</name>
    <message>
        <source>Click a box to hide or show its curve, the right button for all</source>
        <translation>点击方框隐藏或显示曲线，右键对全部曲线操作</translation>
    </message>
    <message>
        <source>Show all</source>
        <translation>全部显示</translation>
    </message>
    <message>
        <source>Hide all</source>
        <translation>全部隐藏</translation>
    </message>
</context>
<context>
    <name>CurvePlot</name>
    <message>
        <source>Time (s)</source>
        <translation>时间 (秒)</translation>
    </message>
</context>
<context>
    <name>PlotWindow</name>
    <message>
        <source>Curves</source>
        <translation>曲线</translation>
    </message>
    <message>
        <source>Tools</source>
        <translation>工具</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>暂停</translation>
    </message>
    <message>
        <source>Hold the picture; samples go on coming in (Space)</source>
        <translation>停住画面，数据继续接收（空格键）</translation>
    </message>
    <message>
        <source>Show all</source>
        <translation>显示全部</translation>
    </message>
    <message>
        <source>Everything in view, and on with what comes in (Home, or a double click)</source>
        <translation>显示全部内容，并继续跟随新数据（Home 键或双击）</translation>
    </message>
    <message>
        <source>Save picture…</source>
        <translation>保存图片…</translation>
    </message>
    <message>
        <source>Window:</source>
        <translation>时间窗：</translation>
    </message>
    <message>
        <source> s</source>
        <translation> 秒</translation>
    </message>
    <message>
        <source>Curves on port %1</source>
        <translation>曲线，端口 %1</translation>
    </message>
    <message>
        <source>Waiting for a connection on port %1</source>
        <translation>正在端口 %1 等待连接</translation>
    </message>
    <message>
        <source>%1: %L2 lines left out</source>
        <translation>%1：略去 %L2 行</translation>
    </message>
    <message>
        <source>%1: only the last %L2 of %L3 samples are shown</source>
        <translation>%1：共 %L3 个样本，只显示最后 %L2 个</translation>
    </message>
    <message>
        <source>Value %1</source>
        <translation>数值 %1</translation>
    </message>
    <message>
        <source>Waiting on port %1</source>
        <translation>正在端口 %1 等待</translation>
    </message>
    <message>
        <source>Connected to %1</source>
        <translation>已连接 %1</translation>
    </message>
    <message>
        <source>Curves: %1, records/s: %2</source>
        <translation>曲线：%1，每秒记录数：%2</translation>
    </message>
    <message>
        <source>Save picture</source>
        <translation>保存图片</translation>
    </message>
    <message>
        <source>Pictures (*.png *.svg)</source>
        <translation>图片 (*.png *.svg)</translation>
    </message>
    <message>
        <source>Saved %1</source>
        <translation>已保存 %1</translation>
    </message>
    <message>
        <source>%1 cannot be written.</source>
        <translation>%1 无法写入。</translation>
    </message>
</context>
<context>
    <name>faultText</name>
    <message>
        <source>%L1 not numbers</source>
        <translation>%L1 条不是数字</translation>
    </message>
    <message>
        <source>%L1 too long</source>
        <translation>%L1 条过长</translation>
    </message>
    <message>
        <source>%L1 of another width</source>
        <translation>%L1 条列数不同</translation>
    </message>
    <message>
        <source>%L1 cut</source>
        <translation>%L1 条不完整</translation>
    </message>
    <message>
        <source>Records refused: %1</source>
        <translation>拒收的记录：%1</translation>
    </message>
    <message>
        <source>values that are no numbers: %L1</source>
        <translation>不是数字的值：%L1</translation>
    </message>
</context>
</TS>
