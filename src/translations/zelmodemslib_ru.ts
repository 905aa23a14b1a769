<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru_RU">
<context>
    <name>AtModem</name>
    <message>
        <source>Wrong mcc </source>
        <translation>Неверный mcc </translation>
    </message>
    <message>
        <source>Wrong mnc</source>
        <translation>Неверный mnc</translation>
    </message>
    <message>
        <source>Operator</source>
        <translation>Оператор</translation>
    </message>
    <message>
        <source>Retry send USSD for ZTE modems</source>
        <translation>Повторная отправка USSD для модемов ZTE</translation>
    </message>
    <message>
        <source>Waiting for USSD reply, attempt %1.</source>
        <translation>Ожидание ответа на USSD, попытка %1.</translation>
    </message>
    <message>
        <source>minus</source>
        <translation>минус</translation>
    </message>
    <message>
        <source>Port opening error: </source>
        <translation>Ошибка открытия порта: </translation>
    </message>
    <message>
        <source>Modem is offline pn port %1</source>
        <translation>Модем не отвечает на порту %1</translation>
    </message>
    <message>
        <source>Modem said &quot;ERROR&quot;</source>
        <translation>Модем ответил &quot;ERROR&quot;</translation>
    </message>
    <message>
        <source>Modem said &quot;NO CARRIER&quot;</source>
        <translation>Модем ответил &quot;NO CARRIER&quot;</translation>
    </message>
</context>
<context>
    <name>ModemsFinder</name>
    <message>
        <source>There are no available ports</source>
        <translation>Нет доступных портов</translation>
    </message>
    <message>
        <source>There no devices finded</source>
        <translation>Устройства не найдены</translation>
    </message>
    <message>
        <source>Search on %1</source>
        <translation>Поиск на %1</translation>
    </message>
    <message>
        <source>Invalid port %1</source>
        <translation>Неверный порт %1</translation>
    </message>
    <message>
        <source>The port %1 is busy</source>
        <translation>Порт %1 занят</translation>
    </message>
    <message>
        <source>product identifire is %1</source>
        <translation>идентификатор продукта %1</translation>
    </message>
    <message>
        <source>vendor identifire is %1</source>
        <translation>идентификатор производителя %1</translation>
    </message>
    <message>
        <source>manufacturer is %1</source>
        <translation>производитель %1</translation>
    </message>
    <message>
        <source>Port %1:</source>
        <translation>Порт %1:</translation>
    </message>
    <message>
        <source>Modem on %1 %2</source>
        <translation>Модем на %1 %2</translation>
    </message>
    <message>
        <source>is open</source>
        <translation>открыт</translation>
    </message>
    <message>
        <source>is not open</source>
        <translation>не открыт</translation>
    </message>
    <message>
        <source>port %1 baudrate %2</source>
        <translation>порт %1 скорость %2</translation>
    </message>
    <message>
        <source>port %1 mnc request error</source>
        <translation>порт %1: ошибка запроса mnc</translation>
    </message>
    <message>
        <source>port %1 mcc %2 mnc %3</source>
        <translation>порт %1 mcc %2 mnc %3</translation>
    </message>
    <message>
        <source>port %1: %2 mnc=%3, mcc=%4</source>
        <translation>порт %1: %2 mnc=%3, mcc=%4</translation>
    </message>
    <message>
        <source>Mnc table does not contain</source>
        <translation>Таблица MNC не содержит</translation>
    </message>
    <message>
        <source>port %1 search result %2</source>
        <translation>порт %1 результат поиска %2</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Unknown error</source>
        <translation>Неизвестная ошибка</translation>
    </message>
    <message>
        <source>Invalid port name or baudrate</source>
        <translation>Неверное имя порта или скорость</translation>
    </message>
    <message>
        <source>Mnc table does not contain an operator with mcc = %1 and mnc = %2</source>
        <translation>Таблица MNC не содержит оператора с mcc = %1 и mnc = %2</translation>
    </message>
    <message>
        <source>Mnc table contains wrong operator data for mcc = %1 and mnc = %2</source>
        <translation>Таблица MNC содержит неверные данные оператора для mcc = %1 и mnc = %2</translation>
    </message>
    <message>
        <source>Request timeout</source>
        <translation>Превышено время ожидания ответа</translation>
    </message>
    <message>
        <source>Error reading service number.</source>
        <translation>Ошибка чтения номера сервисного центра.</translation>
    </message>
    <message>
        <source>Error reading message type.</source>
        <translation>Ошибка чтения типа сообщения.</translation>
    </message>
    <message>
        <source>Error reading address length.</source>
        <translation>Ошибка чтения длины адреса.</translation>
    </message>
    <message>
        <source>Error reading address type.</source>
        <translation>Ошибка чтения типа адреса.</translation>
    </message>
    <message>
        <source>Error reading address type %1.</source>
        <translation>Ошибка чтения типа адреса %1.</translation>
    </message>
    <message>
        <source>Error reading sender address.</source>
        <translation>Ошибка чтения адреса отправителя.</translation>
    </message>
    <message>
        <source>Error reading data coding scheme.</source>
        <translation>Ошибка чтения схемы кодирования данных.</translation>
    </message>
    <message>
        <source>Error reading timestamp.</source>
        <translation>Ошибка чтения отметки времени.</translation>
    </message>
    <message>
        <source>Error reading user data length.</source>
        <translation>Ошибка чтения длины данных пользователя.</translation>
    </message>
    <message>
        <source>Error reading text of message.</source>
        <translation>Ошибка чтения текста сообщения.</translation>
    </message>
    <message>
        <source>wvdial error</source>
        <translation>ошибка wvdial</translation>
    </message>
    <message>
        <source>wvdial</source>
        <translation>wvdial</translation>
    </message>
</context>
<context>
    <name>WvDialConfWrapper</name>
    <message>
        <source>wvdial error</source>
        <translation>ошибка wvdial</translation>
    </message>
    <message>
        <source>wvdial</source>
        <translation>wvdial</translation>
    </message>
</context>
<context>
    <name>SmsPduDecoder</name>
    <message>
        <source>Error reading service number.</source>
        <translation>Ошибка чтения номера сервисного центра.</translation>
    </message>
    <message>
        <source>Error reading message type.</source>
        <translation>Ошибка чтения типа сообщения.</translation>
    </message>
    <message>
        <source>Error reading address length.</source>
        <translation>Ошибка чтения длины адреса.</translation>
    </message>
    <message>
        <source>Error reading address type.</source>
        <translation>Ошибка чтения типа адреса.</translation>
    </message>
    <message>
        <source>Error reading address type %1.</source>
        <translation>Ошибка чтения типа адреса %1.</translation>
    </message>
    <message>
        <source>Error reading sender address.</source>
        <translation>Ошибка чтения адреса отправителя.</translation>
    </message>
    <message>
        <source>Error reading data coding scheme.</source>
        <translation>Ошибка чтения схемы кодирования данных.</translation>
    </message>
    <message>
        <source>Error reading timestamp.</source>
        <translation>Ошибка чтения отметки времени.</translation>
    </message>
    <message>
        <source>Error reading user data length.</source>
        <translation>Ошибка чтения длины данных пользователя.</translation>
    </message>
    <message>
        <source>Error reading text of message.</source>
        <translation>Ошибка чтения текста сообщения.</translation>
    </message>
</context>
</TS>
