#!/usr/bin/env python3
"""Writes full-footprint.xml, what ByteExactTest expects: every attribute of every element, computed without the library.

usage: full-footprint.py > full-footprint.xml
"""
import hashlib
import sys

# Tag: attributes in file order, then children in file order; a list has its entry's tag.
ROOT = ('formatVersion creationDate generatedBy checksum', 'DeviceData HardwareData SoftwareData ConnectedDeviceList')
TABLES = {
    'DeviceFootprint': ROOT,
    'ConnectedDevice': ROOT,
    'DeviceData': ('deviceId partChangeIndex type partName productDate upgradeType upgradePartNumber',
                   'TestInstructionList MaintenanceData ServiceData'),
    'TestInstruction': ('name version', ''),
    'MaintenanceData': ('operatingHours makeAndBreakCycles', 'Maintenances MaintenanceInfos'),
    'Maintenance': ('responsiblePerson maintenanceDate generatedBy', 'MaintenanceTasks'),
    'MaintenanceTask': ('name done result', ''),
    'MaintenanceInfo': ('name value', 'Properties'),
    'HardwareData': ('', 'HardwareList ProductList'),
    'Hardware': ('id productId partNumber sn partChangeIndex hardwareCode productDate readCode testInstruction name '
                 'partName parentId externConnected connectorName',
                 'BPartIdentification ProgrammableParts MaintenanceData ServiceData Properties'),
    'BPartIdentification': ('name partNumber sn partChangeIndex vendorName additionalInfo', ''),
    'ProgrammablePart': ('name version partNumber partChangeIndex', ''),
    'Product': ('id partNumber partChangeIndex type partName', ''),
    'Property': ('name value', ''),
    'ServiceData': ('', 'Services'),
    'Service': ('serviceCode serviceDate', ''),
    'SoftwareData': ('', 'Bios OperatingSystem SoftwareList'),
    'Bios': ('name version partNumber partChangeIndex', ''),
    'OperatingSystem': ('name version partNumber partChangeIndex imageName imageVersion windowsSuiteMask '
                        'windowsProductType servicePackDescription servicePackMajorVersion servicePackMinorVersion '
                        'systemWordSize systemLanguage kernelRelease kernvelVersion buildVersion', ''),
    'Software': ('name version status partNumber partChangeIndex sn vendorName wordSize configuration releaseState '
                 'architecture', 'SoftwareList Properties'),
}
LISTS = {
    'TestInstructionList': 'TestInstruction', 'Maintenances': 'Maintenance', 'MaintenanceTasks': 'MaintenanceTask',
    'MaintenanceInfos': 'MaintenanceInfo', 'HardwareList': 'Hardware', 'ProgrammableParts': 'ProgrammablePart',
    'ProductList': 'Product', 'Properties': 'Property', 'Services': 'Service', 'SoftwareList': 'Software',
    'ConnectedDeviceList': 'ConnectedDevice',
}
ENTRIES = 2
LEVELS = {'SoftwareList': 2, 'ConnectedDeviceList': 2}

# What the test sets itself, by the path of the attribute; values as they stand in a file.
PRESET = {
    'DeviceFootprint/formatVersion': '02.06',
    'DeviceFootprint/DeviceData/productDate': '&#4294967268;&#4294967295;',
    'DeviceFootprint/DeviceData/upgradeType': 'true',
    'DeviceFootprint/DeviceData/MaintenanceData/operatingHours': '-2147483648',
    'DeviceFootprint/DeviceData/MaintenanceData/makeAndBreakCycles': '2147483647',
    'DeviceFootprint/SoftwareData/Bios/version': '&#128;&#55296;&#1114111;&#2147483648;',
}
RAW_OLD = ['<ConnectedDevice formatVersion="02.05"', '  <DeviceData deviceId="&#228;"/>', '</ConnectedDevice>']
RAW_NEW = ['<ConnectedDevice formatVersion="02.06" checksum="0a">', '  <DeviceData  deviceId="b"/>', '</ConnectedDevice>']


class Element:
    def __init__(self, tag):
        self.tag = tag
        self.attributes = []
        self.children = []
        self.raw = []

    def attribute(self, name):
        return dict(self.attributes).get(name, '')


class Filler:
    def __init__(self):
        self.number = 0
        self.level = dict.fromkeys(LEVELS, 0)

    def value(self, name):
        self.number += 1
        text = '%s-%d-v' % (name, self.number)
        if self.number % 5 == 0:
            text += ' &lt;&amp;&gt;&quot;&apos;&#9;&#10;&#233;&#8364;&#128512;&#4294967268;'
        return text

    def fill(self, tag, path):
        element = Element(tag)
        if tag in LISTS:
            self.fill_list(element, path)
            return element
        attributes, children = TABLES[tag]
        for name in attributes.split():
            if name == 'formatVersion':
                element.attributes.append((name, '02.06'))
            elif name != 'checksum':
                element.attributes.append((name, PRESET.get(path + '/' + name) or self.value(name)))
        element.children = [self.fill(child, path + '/' + child) for child in children.split()]
        return element

    def fill_list(self, element, path):
        tag = element.tag
        if tag in LEVELS and self.level[tag] == LEVELS[tag]:
            return
        if tag in LEVELS:
            self.level[tag] += 1
        element.children = [self.fill(LISTS[tag], path + '/' + LISTS[tag]) for _ in range(ENTRIES)]
        if tag in LEVELS:
            self.level[tag] -= 1
        for child in element.children:
            if child.tag == 'ConnectedDevice':
                child.attributes.append(('checksum', digest(child)))


def is_empty(element):
    return not element.attributes and not element.raw and all(is_empty(child) for child in element.children)


def canonical(element, is_root=True):
    if element.tag == 'ConnectedDevice' and not is_root and element.attribute('checksum'):
        return 'checksum="%s"' % element.attribute('checksum')
    text = ''.join('%s="%s"' % pair for pair in sorted(element.attributes) if not (is_root and pair[0] == 'checksum'))
    text += ''.join(canonical(child, False) for child in sorted(element.children, key=lambda child: child.tag))
    return text + ''.join(element.raw_checksums if element.raw else [])


def digest(element):
    return hashlib.md5(canonical(element).encode()).hexdigest()


def write(element, depth):
    if is_empty(element):
        return []
    blanks = '  ' * depth
    start = blanks + '<' + element.tag + ''.join(' %s="%s"' % pair for pair in element.attributes)
    inner = [line for child in element.children for line in write(child, depth + 1)]
    inner += [blanks + '  ' + line for line in element.raw]
    return [start + '>'] + inner + [blanks + '</' + element.tag + '>'] if inner else [start + '/>']


def main():
    root = Filler().fill('DeviceFootprint', 'DeviceFootprint')
    root.attributes[1] = ('creationDate', '2015-03-01T08:05:59')
    old_digest = hashlib.md5(b'formatVersion="02.05"deviceId="&#228;"').hexdigest()
    devices = root.children[-1]
    devices.raw = [RAW_OLD[0] + ' checksum="%s">' % old_digest] + RAW_OLD[1:] + RAW_NEW
    devices.raw_checksums = ['checksum="%s"' % old_digest, 'checksum="0a"']
    root.attributes.append(('checksum', digest(root)))
    lines = ['<?xml version="1.0" encoding="utf-8" ?>'] + write(root, 0)
    sys.stdout.write('\n'.join(lines) + '\n')


main()
