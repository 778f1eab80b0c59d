Attribute VB_Name = "Utilities"
Option Explicit

' Helpers shared by the forms of the shop.
Public Const APP_TITLE = "Shop"
Private mCount As Long
Public LastError As String
Dim mReady As Boolean

Public Function FormatPrice(ByVal amount As Currency) As String
    Dim text As String
    text = Format$(amount, "0.00")
    FormatPrice = text
End Function

Public Sub Main()
    mReady = True
    frmMain.Show
End Sub

Private Sub LogLine(ByVal message As String, _
                    Optional ByVal level As Integer = 0)
    Debug.Print message
    mCount = mCount + 1   ' one more line
End Sub

Friend Function Count() As Long
    Count = mCount
End Function
