#include "adapters/linux/dbus/mixer_introspection.h"

namespace plemora {

const char mixerIntrospection[] = R"xml(
  <interface name="com.quorvane.mixer.Mixer1">
    <property name="Channels" type="aa{sv}" access="read"/>
    <property name="Devices" type="aa{sv}" access="read"/>
    <property name="DefaultDevice" type="s" access="read"/>
    <property name="HasVolume" type="b" access="read"/>
    <property name="Volume" type="d" access="read"/>
    <property name="Muted" type="b" access="read"/>
    <property name="Permission" type="s" access="read"/>
    <property name="Connected" type="b" access="read"/>
    <property name="Demo" type="b" access="read">
      <annotation name="org.freedesktop.DBus.Property.EmitsChangedSignal" value="const"/>
    </property>
    <property name="Version" type="s" access="read">
      <annotation name="org.freedesktop.DBus.Property.EmitsChangedSignal" value="const"/>
    </property>
    <method name="SetAppVolume">
      <arg name="id" type="s" direction="in"/>
      <arg name="volume" type="d" direction="in"/>
    </method>
    <method name="ToggleAppMute">
      <arg name="id" type="s" direction="in"/>
    </method>
    <method name="SetAppMute">
      <arg name="id" type="s" direction="in"/>
      <arg name="muted" type="b" direction="in"/>
    </method>
    <method name="SetAppOutput">
      <arg name="id" type="s" direction="in"/>
      <arg name="uid" type="s" direction="in"/>
    </method>
    <method name="SetVolume">
      <arg name="volume" type="d" direction="in"/>
    </method>
    <method name="SetMuted">
      <arg name="muted" type="b" direction="in"/>
    </method>
    <method name="SetDefaultDevice">
      <arg name="uid" type="s" direction="in"/>
    </method>
    <method name="Reload"/>
    <method name="Explain">
      <arg name="id" type="s" direction="in"/>
      <arg name="factors" type="aa{sv}" direction="out"/>
      <arg name="product" type="d" direction="out"/>
      <arg name="verdict" type="s" direction="out"/>
    </method>
    <method name="WatchLevels">
      <arg name="wanted" type="b" direction="in"/>
    </method>
    <method name="Activate">
      <arg name="arguments" type="as" direction="in"/>
    </method>
    <method name="Join">
      <arg name="environment" type="as" direction="in"/>
      <arg name="stoodThere" type="b" direction="out"/>
    </method>
    <method name="Quit"/>
    <signal name="Levels">
      <arg name="levels" type="a(sddd)"/>
    </signal>
  </interface>
  <interface name="org.freedesktop.DBus.Properties">
    <method name="Get">
      <arg name="interface_name" type="s" direction="in"/>
      <arg name="property_name" type="s" direction="in"/>
      <arg name="value" type="v" direction="out"/>
    </method>
    <method name="GetAll">
      <arg name="interface_name" type="s" direction="in"/>
      <arg name="properties" type="a{sv}" direction="out"/>
    </method>
    <method name="Set">
      <arg name="interface_name" type="s" direction="in"/>
      <arg name="property_name" type="s" direction="in"/>
      <arg name="value" type="v" direction="in"/>
    </method>
    <signal name="PropertiesChanged">
      <arg name="interface_name" type="s"/>
      <arg name="changed_properties" type="a{sv}"/>
      <arg name="invalidated_properties" type="as"/>
    </signal>
  </interface>
)xml";

}  // namespace plemora
